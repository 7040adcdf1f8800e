// What the panel makes of cues and of what is typed, without a widget.

#include "app/Lintora/controls/CueTime.h"
#include "app/Lintora/controls/TextDifference.h"
#include "app/Lintora/cues/CueWarnings.h"
#include "app/Lintora/cues/Inspector.h"
#include "app/Lintora/cues/SplitPosition.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Kind = CueWarnings::Kind;

QList<Kind> warningsOf(const Subtitle &cue, const Subtitle *next = nullptr, bool isTooWide = false)
{
    QList<Kind> kinds;
    for (const auto &warning : CueWarnings::of(cue, next, [isTooWide](QStringView) { return isTooWide; })) {
        EXPECT_FALSE(warning.sentence.isEmpty());
        kinds += warning.kind;
    }
    return kinds;
}

TEST(CueWarnings, limits_are_not_yet_beyond)
{
    struct Row
    {
        const char *name;
        Subtitle cue;
        QList<Kind> expected;
    };
    const auto cue = [](qint64 lengthMS, const QString &text) {
        return Subtitle{.id = 1, .start = 1'000, .end = 1'000 + lengthMS, .text = text};
    };
    const QString twelve(12, u'字');
    const QString twenty(20, u'x');
    const Row rows[] = {
        {"twelve Chinese characters a second", cue(1'000, twelve), {}},
        {"a little faster", cue(999, twelve), {Kind::tooFast}},
        {"thirteen", cue(1'000, twelve + u'字'), {Kind::tooFast}},
        {"marks and blanks are not read", cue(1'000, twelve + u"，。 ！"_s), {}},
        {"twenty Latin characters a second", cue(1'000, twenty), {}},
        {"twenty-one", cue(1'000, twenty + u'x'), {Kind::tooFast}},
        {"each script needs its time", cue(2'000, twelve + twenty), {}},
        {"and a little less is too fast", cue(1'999, twelve + twenty), {Kind::tooFast}},
        {"who reads one language need not read the other", cue(1'000, twelve + u'\n' + twenty), {}},
        {"but needs the time for that one", cue(999, u"好\n"_s + twenty), {Kind::tooFast}},
        {"two lines of one language are both read", cue(1'000, u"一二三四五六\n七八九十一二三"_s), {Kind::tooFast}},
        {"as short as may be", cue(700, u"好"_s), {}},
        {"too short", cue(699, u"好"_s), {Kind::tooShort}},
        {"as long as may be", cue(7'000, u"好"_s), {}},
        {"too long", cue(7'001, u"好"_s), {Kind::tooLong}},
        {"two lines", cue(2'000, u"一\n二"_s), {}},
        {"three lines", cue(2'000, u"一\n二\n三"_s), {Kind::tooManyLines}},
        {"no time at all", cue(0, u"好"_s), {Kind::tooShort}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(warningsOf(row.cue), row.expected) << row.name;
}

TEST(CueWarnings, speeds_stand_beside_the_limit_that_they_are_over)
{
    const std::pair<QString, QString> rows[] = {
        {u"一二三四五六七八九十一二三"_s, u"读不完：每秒 13 字，宜在 12 字以内"_s},
        {u"你好\nHello wonderful wide world"_s, u"读不完：每秒 23 个字符，宜在 20 个以内"_s},
        {u"欢迎 abcdefghijklmnopqr"_s, u"读不完：每秒 21.4 个字符，宜在 20 个以内"_s},
    };
    for (const auto &[text, sentence] : rows)
        EXPECT_EQ(CueWarnings::of({.id = 1, .start = 0, .end = 1'000, .text = text}, nullptr, {}).value(0).sentence,
                  sentence);
    const Subtitle hardly{.id = 1, .start = 0, .end = 999, .text = QString(12, u'字')};
    EXPECT_EQ(CueWarnings::of(hardly, nullptr, {}).value(0).sentence, u"读不完：每秒 12.1 字，宜在 12 字以内"_s);
}

TEST(CueWarnings, neighbours_may_touch_but_not_overlap)
{
    const Subtitle cue{.id = 1, .start = 0, .end = 1'000, .text = u"好"_s};
    const Subtitle touching{.id = 2, .start = 1'000, .end = 2'000, .text = u"好"_s};
    const Subtitle overlapping{.id = 2, .start = 999, .end = 2'000, .text = u"好"_s};
    EXPECT_TRUE(warningsOf(cue, &touching).isEmpty());
    EXPECT_EQ(warningsOf(cue, &overlapping), QList{Kind::overlapping});
}

TEST(CueWarnings, several_are_said_in_a_fixed_order)
{
    const Subtitle cue{.id = 1, .start = 0, .end = 500, .text = QString(20, u'字')};
    EXPECT_EQ(warningsOf(cue, nullptr, true), (QList{Kind::tooFast, Kind::tooShort, Kind::tooWide}));
}

TEST(CueTime, reads_times_as_they_are_typed)
{
    const FrameRate &rate25 = FrameRate::all()[2];
    const std::pair<QString, qint64> accepted[] = {
        {u"00:01:02,500"_s, 62'500},
        {u"00:01:02.5"_s, 62'500},
        {u"1:02.5"_s, 62'500},
        {u"62.5"_s, 62'500},
        {u"62"_s, 62'000},
        {u" 0 "_s, 0},
        {u"100:00:00"_s, 360'000'000},
        {u"90:00"_s, 5'400'000},
        {u"0.0004"_s, 0},
        {u"0.0005"_s, 1},
        {u"１：０２，５"_s, 62'500},
        {u"00:00:01:12"_s, 1'480},
        {u"12f"_s, 480},
        {u"25 帧"_s, 1'000},
    };
    for (const auto &[typed, expected] : accepted)
        EXPECT_EQ(CueTime::parse(typed, rate25), expected) << qPrintable(typed);
}

TEST(CueTime, reads_how_far_cues_are_to_go)
{
    const FrameRate &rate = FrameRate::all()[3]; // 29.97
    const FrameGrid grid{.numerator = 30'000, .denominator = 1'001};
    struct Row
    {
        QString typed;
        CueTime::Unit unit;
        std::optional<CueShift::Distance> expected;
    };
    const auto seconds = CueTime::Unit::seconds;
    const auto frames = CueTime::Unit::frames;
    const Row rows[] = {
        {u"1.5"_s, seconds, {{.count = 1'500}}},
        {u"-0.04"_s, seconds, {{.count = -40}}},
        {u"+ 2"_s, seconds, {{.count = 2'000}}},
        {u"－１２"_s, frames, {{.count = -12, .grid = grid}}},
        {u"−7帧"_s, seconds, {{.count = -7, .grid = grid}}},
        {u"1000000"_s, frames, {{.count = 1'000'000, .grid = grid}}},
        {u"-00:00:10:01"_s, seconds, {{.count = -301, .grid = grid}}},
        {u"1:00"_s, frames, {{.count = 60'000}}},
        {u"1.5"_s, frames, {}},
        {u"--1"_s, seconds, {}},
        {u"+"_s, seconds, {}},
        {u""_s, frames, {}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(CueTime::parseDistance(row.typed, rate, row.unit), row.expected) << qPrintable(row.typed);
}

TEST(CueTime, counts_frames_of_broken_rates_by_their_timecode)
{
    const FrameRate &rate2997 = FrameRate::all()[3];
    EXPECT_EQ(CueTime::parse(u"00:00:10:00", rate2997), 10'010); // 300 frames
    EXPECT_EQ(CueTime::parse(u"30f", rate2997), 1'001);
    EXPECT_EQ(CueTime::parse(u"00:00:00:30", rate2997), std::nullopt);
}

TEST(CueTime, refuses_what_is_no_time)
{
    const QString refused[] = {u""_s,          u"abc"_s,         u":"_s,           u"1:"_s, u"1:60"_s,
                               u"1:60:00"_s,   u"-1"_s,          u"1.2.3"_s,       u"."_s,  u"1."_s,
                               u"1:2:3:4:5"_s, u"00:00:01:25"_s, u"00:00:1.5:2"_s, u"f"_s,  u"1e3"_s,
                               u"1 2"_s,       u"99999999999"_s};
    for (const QString &typed : refused)
        EXPECT_EQ(CueTime::parse(typed, FrameRate::all()[2]), std::nullopt) << qPrintable(typed);
}

TEST(TextDifference, marks_what_goes_and_what_comes)
{
    using TextDifference::Difference;
    struct Row
    {
        QString before;
        QString after;
        Difference expected;
    };
    const Row rows[] = {
        {u"一二三"_s, u"一二三"_s, {}},
        {u"一二三"_s, u"一三"_s, {.removed = {{1, 1}}, .added = {}}},
        {u"一三"_s, u"一二三"_s, {.removed = {}, .added = {{1, 1}}}},
        {u"的地得"_s, u"的得地得"_s, {.removed = {}, .added = {{1, 1}}}},
        {u""_s, u"新"_s, {.removed = {}, .added = {{0, 1}}}},
        {u"甲乙"_s, u"丙丁"_s, {.removed = {{0, 2}}, .added = {{0, 2}}}},
        // A family emoji is one character, though all of it but one person is the same.
        {u"好👨‍👩‍👧好"_s, u"好👨‍👩‍👦好"_s, {.removed = {{1, 8}}, .added = {{1, 8}}}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(TextDifference::between(row.before, row.after), row.expected) << qPrintable(row.before);
}

TEST(SplitPosition, looks_for_the_best_break_near_the_middle)
{
    const std::pair<QString, qsizetype> rows[] = {
        {u"一二\n三四五六七八"_s, 3}, // a line's end
        {u"一，二三四五六，七八九十"_s, 8}, {u"hello world"_s, 6}, {u"一二三四"_s, 2}, {u"好"_s, 0},
    };
    for (const auto &[text, expected] : rows)
        EXPECT_EQ(SplitPosition::nearMiddle(text), expected) << qPrintable(text);
}

TEST(CueNumbers, read_as_an_editor_says_them)
{
    const Subtitle cue{.id = 1, .start = 1'000, .end = 2'500, .text = u"今天我们聊聊\n调色，新的方法"_s};
    const FrameRate &rate25 = FrameRate::all()[2];
    const auto nextAt = [](qint64 start) {
        return Subtitle{.id = 2, .start = start, .end = start + 1, .text = u"好"_s};
    };
    EXPECT_EQ(CueNumbers::summary(cue), u"时长 1.5 s · 12 字 · 8.0 字/秒"_s);
    const Subtitle pair{.id = 1, .start = 0, .end = 2'000, .text = u"你好\nHello world"_s};
    EXPECT_EQ(CueNumbers::summary(pair), u"时长 2.0 s · 2 字 1.0/秒 · 10 字符 5.0/秒"_s);
    const Subtitle touching = nextAt(2'500);
    const Subtitle later = nextAt(2'900);
    const Subtitle earlier = nextAt(2'420);
    EXPECT_EQ(CueNumbers::gap(cue, &touching, rate25), u"下一条间隔 0 帧"_s);
    EXPECT_EQ(CueNumbers::gap(cue, &later, rate25), u"下一条间隔 10 帧"_s);
    EXPECT_EQ(CueNumbers::gap(cue, &earlier, rate25), u"与下一条重叠 2 帧"_s);
    EXPECT_EQ(CueNumbers::gap(cue, nullptr, rate25), u"最后一条"_s);
}

} // namespace
