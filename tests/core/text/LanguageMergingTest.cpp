#include "core/text/LanguageMerging.h"

#include "core/text/LanguageSeparation.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> cues(const QStringList &lines)
{
    QList<Subtitle> list;
    for (const QString &line : lines)
        list.append({.id = list.size() + 1,
                     .start = line.section(u' ', 0, 0).toLongLong(),
                     .end = line.section(u' ', 1, 1).toLongLong(),
                     .text = line.section(u' ', 2)});
    return list;
}

std::string text(const QList<Subtitle> &list)
{
    QStringList lines;
    for (const Subtitle &cue : list)
        lines.append(u"%1 %2 %3"_s.arg(cue.start).arg(cue.end).arg(cue.text).replace(u'\n', u'/'));
    return lines.join(u", "_s).toStdString();
}

struct Merging
{
    const char *name;
    QStringList a;
    QStringList b;
    const char *items;
    const char *unmatchedA = "";
    const char *unmatchedB = "";
};

class Merges : public ::testing::TestWithParam<Merging>
{};

const QList<Merging> mergings{
    {"same_times", {u"0 10 甲"_s}, {u"0 10 A"_s}, "0 10 甲/A"},
    {"the_first_list_has_the_time", {u"0 10 甲"_s}, {u"2 12 A"_s}, "0 10 甲/A"},
    {"half_of_the_shorter_one", {u"0 10 甲"_s}, {u"5 15 A"_s}, "0 10 甲/A"},
    {"less_than_half", {u"0 10 甲"_s}, {u"6 16 A"_s}, "0 10 甲, 6 16 A", "0 10 甲", "6 16 A"},
    {"touching", {u"0 10 甲"_s}, {u"10 20 A"_s}, "0 10 甲, 10 20 A", "0 10 甲", "10 20 A"},
    {"the_longest_overlap_wins", {u"0 10 甲"_s, u"10 20 乙"_s}, {u"4 18 A"_s}, "0 10 甲, 10 20 乙/A", "0 10 甲"},
    {"several_in_one", {u"0 10 甲"_s}, {u"5 10 B"_s, u"0 5 A"_s}, "0 10 甲/A/B"},
    {"a_long_cue_before_short_ones", {u"0 99 题"_s, u"5 6 甲"_s}, {u"50 90 T"_s}, "0 99 题/T, 5 6 甲", "5 6 甲"},
    {"in_order_of_time",
     {u"20 30 乙"_s, u"0 10 甲"_s},
     {u"12 14 X"_s},
     "0 10 甲, 12 14 X, 20 30 乙",
     "0 10 甲, 20 30 乙",
     "12 14 X"},
    {"nothing_to_join", {}, {u"0 1 A"_s}, "0 1 A", "", "0 1 A"},
};

TEST_P(Merges, by_the_time_that_they_share)
{
    const auto merged = LanguageMerging::merge(cues(GetParam().a), cues(GetParam().b));
    EXPECT_EQ(text(merged.items), GetParam().items);
    EXPECT_EQ(text(merged.unmatchedA), GetParam().unmatchedA);
    EXPECT_EQ(text(merged.unmatchedB), GetParam().unmatchedB);
    for (qsizetype i = 0; i < merged.items.size(); ++i)
        EXPECT_EQ(merged.items[i].id, i + 1);
}

INSTANTIATE_TEST_SUITE_P(LanguageMerging, Merges, ::testing::ValuesIn(mergings),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(LanguageMerging, undoes_a_separation)
{
    const QList<Subtitle> both = cues({u"0 10 你好\nHello"_s, u"10 20 再见\nBye"_s});
    const auto groups = LanguageSeparation::split(both);
    ASSERT_EQ(groups.size(), 2);
    EXPECT_EQ(LanguageMerging::merge(groups[0].items, groups[1].items).items, both);
    EXPECT_EQ(LanguageMerging::merge(groups[0].items, groups[1].items, u" · "_s).items[0].text, u"你好 · Hello"_s);
}

} // namespace
