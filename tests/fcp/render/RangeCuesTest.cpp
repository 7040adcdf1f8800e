#include "fcp/render/RangeCues.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Subtitle cue(qint64 start, qint64 end, const QString &text)
{
    return {.id = 7, .start = start, .end = end, .text = text};
}

struct Row
{
    const char *name;
    QList<Subtitle> first;  ///< Of what is heard from 0 to 105 s, the border being at 100 s ...
    QList<Subtitle> second; ///< ... and of what is heard from 95 s on, counted from there.
    QString merged;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.name;
}

class Range_cues : public testing::TestWithParam<Row>
{};

} // namespace

TEST_P(Range_cues, are_neither_lost_nor_doubled_at_a_border)
{
    RangeCues cues;
    cues.add({.begin = 0, .end = 100'000, .heardBegin = 0, .heardEnd = 105'000}, GetParam().first);
    cues.add({.begin = 100'000, .end = 200'000, .heardBegin = 95'000, .heardEnd = 200'000}, GetParam().second);
    QString text;
    for (const Subtitle &each : cues.merged(200'000))
        text += u"%1:%2-%3 %4\n"_s.arg(each.id).arg(each.start).arg(each.end).arg(each.text);
    EXPECT_EQ(text, GetParam().merged);
}

INSTANTIATE_TEST_SUITE_P(
    phrases, Range_cues,
    testing::Values(
        Row{"on_either_side",
            {cue(90'000, 94'000, u"a"_s)},
            {cue(10'000, 12'000, u"b"_s)},
            u"1:90000-94000 a\n2:105000-107000 b\n"_s},
        Row{"that_both_hear_and_the_first_owns",
            {cue(97'000, 101'000, u"first"_s)},
            {cue(2'000, 6'000, u"second"_s)},
            u"1:97000-101000 first\n"_s},
        Row{"that_both_hear_and_the_second_owns",
            {cue(99'000, 103'000, u"first"_s)},
            {cue(4'000, 8'000, u"second"_s)},
            u"1:99000-103000 second\n"_s},
        Row{"that_each_takes_for_the_other_s",
            {cue(98'000, 102'200, u"first"_s)},
            {cue(2'800, 7'000, u"second"_s)},
            u"1:98000-102200 first\n"_s},
        Row{"that_each_takes_for_its_own",
            {cue(97'900, 102'000, u"first"_s)},
            {cue(3'000, 7'200, u"second"_s)},
            u"1:98000-102200 second\n"_s},
        Row{"that_one_hears_as_one_and_the_other_as_two",
            {cue(98'000, 102'100, u"one two"_s)},
            {cue(3'000, 4'900, u"one"_s), cue(4'900, 7'000, u"two"_s)},
            u"1:98000-99900 one\n2:99900-102000 two\n"_s},
        Row{"that_end_at_a_border_that_nobody_meant",
            {cue(99'500, 100'500, u"first"_s)},
            {},
            u"1:99500-100500 first\n"_s},
        Row{"beyond_the_border_that_only_the_wrong_side_hears", {cue(103'000, 105'000, u"cut"_s)}, {}, u""_s},
        Row{"that_share_less_than_half",
            {cue(97'000, 100'900, u"a"_s)},
            {cue(5'200, 8'000, u"b"_s)},
            u"1:97000-100200 a\n2:100200-103000 b\n"_s},
        Row{"of_one_range_that_overlap_stay",
            {cue(90'000, 94'000, u"a"_s), cue(92'000, 93'000, u"b"_s)},
            {},
            u"1:90000-94000 a\n2:92000-93000 b\n"_s},
        Row{"that_end_after_the_sound", {}, {cue(100'000, 110'000, u"end"_s)}, u"1:195000-200000 end\n"_s}),
    [](const auto &row) { return std::string(row.param.name); });
