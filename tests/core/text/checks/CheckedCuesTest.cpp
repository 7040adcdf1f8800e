#include "core/text/checks/CheckedCues.h"

#include "core/Cancelled.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const auto noCheck = [] {};
constexpr FrameGrid grid{.numerator = 25, .denominator = 1};

Subtitle cue(qint64 start, qint64 end, const QString &text)
{
    return {.id = 1, .start = start, .end = end, .text = text};
}

CheckLimits limits()
{
    CheckLimits limits = CheckLimits::builtIn().front();
    limits.off.insert(CheckRule::offFrame);
    return limits;
}

QList<CheckFinding> findings(const QList<Subtitle> &items, const CheckLimits &with = limits())
{
    return CheckedCues(items, with.terms, noCheck).findings(with, grid, noCheck);
}

/// "position rule value/limit", with ! where it can be fixed, separated by commas.
std::string found(const QList<Subtitle> &items, const CheckLimits &with = limits())
{
    QStringList list;
    for (const CheckFinding &each : findings(items, with))
        list += u"%1 %2 %3/%4%5"_s.arg(each.cue)
                    .arg(CheckRules::name(each.rule))
                    .arg(each.value)
                    .arg(each.limit)
                    .arg(each.isFixable ? u"!"_s : QString());
    return list.join(u", ").toStdString();
}

} // namespace

TEST(CheckedCues, finds_times_that_do_not_read_well)
{
    const QString twelve = u"一二三四五六七八九十个字"_s;
    EXPECT_EQ(found({cue(0, 1'000, twelve)}), "");
    EXPECT_EQ(found({cue(0, 999, twelve)}), "0 reading-speed 12.1/12!");
    EXPECT_EQ(found({cue(0, 999, twelve), cue(999, 2'000, u"好"_s)}), "0 reading-speed 12.1/12");
    EXPECT_EQ(found({cue(0, 1'000, u"abcdefghij klmnopqrstu"_s)}), "0 reading-speed 21/20!");
    // Who reads one line of a bilingual cue need not read the other.
    EXPECT_EQ(found({cue(0, 1'000, twelve + u"\nabcdefghij klmnopqrst"_s)}), "");
    EXPECT_EQ(found({cue(0, 700, u"好"_s)}), "");
    EXPECT_EQ(found({cue(0, 699, u"好"_s)}), "0 too-short 699/700!");
    EXPECT_EQ(found({cue(0, 699, u"好"_s), cue(699, 1'500, u"走"_s)}), "0 too-short 699/700");
    EXPECT_EQ(found({cue(0, 7'000, u"好"_s)}), "");
    EXPECT_EQ(found({cue(0, 7'001, u"好"_s)}), "0 too-long 7001/7000");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(1'000, 2'000, u"走"_s)}), "");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(1'079, 2'000, u"走"_s)}), "0 small-gap 79/80!");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(1'080, 2'000, u"走"_s)}), "");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(999, 2'000, u"走"_s)}), "0 overlap 1/0!");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(699, 2'000, u"走"_s)}), "0 overlap 301/0");
    // Neighbours in time, whatever the order of the list.
    EXPECT_EQ(found({cue(2'000, 3'000, u"走"_s), cue(0, 2'001, u"好"_s)}), "1 overlap 1/0!");
    CheckLimits onFrames = limits();
    onFrames.off.clear();
    EXPECT_EQ(found({cue(40, 1'000, u"好"_s), cue(1'000, 2'015, u"走"_s)}, onFrames), "1 off-frame 15/0!");
}

TEST(CheckedCues, finds_texts_that_do_not_fit)
{
    const QString sixteen = u"一二三四五六七八九十一二三四五六"_s;
    EXPECT_EQ(found({cue(0, 5'000, sixteen)}), "");
    EXPECT_EQ(found({cue(0, 5'000, sixteen + u"a"_s)}), "0 too-wide 16.5/16");
    EXPECT_EQ(found({cue(0, 5'000, u"a\nb"_s)}), "");
    EXPECT_EQ(found({cue(0, 5'000, u"a\nb\nc"_s)}), "0 too-many-lines 3/2");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(1'000, 2'000, u"好"_s)}), "1 doubled 0/2000!");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(3'000, 4'000, u"好"_s)}), "1 doubled 2000/2000");
    EXPECT_EQ(found({cue(0, 1'000, u"好"_s), cue(3'001, 4'000, u"好"_s)}), "");
}

TEST(CheckedCues, finds_faults_in_a_text)
{
    struct Case
    {
        QString text;
        std::string findings;
    };
    for (const Case &each : {
             Case{u"你好，世界。"_s, ""},
             Case{u"你好 \n世界"_s, "0 blanks 1/0!"},
             Case{u"　你好"_s, "0 blanks 1/0!"},
             Case{u"你好,世界"_s, "0 mixed-width 1/0!"},
             Case{u"用Rec.709, 好"_s, ""},
             Case{u"第3.5节（ＯＫ）"_s, "0 mixed-width 2/0!"},
             Case{u"Hello，world"_s, "0 mixed-width 1/0!"},
             Case{u"Hello, world (ok)."_s, ""},
             Case{u"（好"_s, "0 brackets 1/0"},
             Case{u"好」"_s, "0 brackets 1/0"},
             Case{u"don’t say “no”"_s, ""},
             Case{u"a\u200Bb\u0007"_s, "0 bad-characters 2/0!"},
             Case{u"a\uFFFDb"_s, "0 bad-characters 1/0"},
             Case{u"👨‍👩‍👧\tok"_s, ""},
         })
        EXPECT_EQ(found({cue(0, 5'000, each.text)}), each.findings) << each.text.toStdString();
}

TEST(CheckedCues, finds_what_differs_within_the_track)
{
    const auto track = [](const QStringList &texts) {
        QList<Subtitle> items;
        for (const QString &text : texts)
            items += cue(items.size() * 5'000, items.size() * 5'000 + 3'000, text);
        return found(items);
    };
    EXPECT_EQ(track({u"用iPhone拍"_s, u"用Iphone拍"_s, u"iPhone好"_s}), "1 mixed-terms 1/0!");
    EXPECT_EQ(track({u"Apple pie"_s, u"an apple"_s, u"The end. The end"_s, u"of the end"_s}), "");
    EXPECT_EQ(track({u"其他人"_s, u"其它人"_s, u"其它事"_s}), "1 mixed-terms 1/0!, 2 mixed-terms 1/0!");
    EXPECT_EQ(track({u"其它人"_s, u"其它事"_s}), "");
    EXPECT_EQ(track({u"一共20个"_s, u"大概二十五个"_s, u"有30分钟"_s, u"一个十分好的"_s}), "1 mixed-digits 1/0");
    EXPECT_EQ(track({u"大概二十五个"_s, u"一百二十天"_s}), "");
    EXPECT_EQ(track({u"他说“你好"_s, u"再见”"_s}), "");
    EXPECT_EQ(track({u"他说“你好"_s, u"再见"_s}), "0 brackets 1/0");
}

TEST(CheckedCues, says_what_is_wrong_with_its_number)
{
    const auto message = [](const QList<Subtitle> &items) { return findings(items).at(0).message(); };
    EXPECT_EQ(message({cue(0, 999, u"一二三四五六七八九十个字"_s)}), u"读不完：每秒 12.1 字，宜在 12 字以内"_s);
    EXPECT_EQ(message({cue(0, 1'000, u"abcdefghijklmnopqrstu"_s)}), u"读不完：每秒 21 个字符，宜在 20 个以内"_s);
    EXPECT_EQ(message({cue(0, 699, u"好"_s)}), u"只有 699 毫秒，宜不短于 0.7 秒"_s);
    EXPECT_EQ(message({cue(0, 8'000, u"好"_s)}), u"长达 8.0 秒，宜不超过 7 秒"_s);
    EXPECT_EQ(message({cue(0, 5'000, u"a\nb\nc"_s)}), u"共 3 行，宜不超过两行"_s);
    EXPECT_EQ(message({cue(0, 5'000, u"（好"_s)}), u"“（”不成对"_s);
    EXPECT_EQ(message({cue(0, 5'000, u"a\u200B"_s)}), u"有 1 个控制字符、不可见字符或乱码（U+200B）"_s);
}

TEST(CheckedCues, ends_when_the_check_throws)
{
    const auto cancel = [] { throw Cancelled(); };
    EXPECT_THROW(CheckedCues({cue(0, 1, u"好"_s)}, {}, cancel), Cancelled);
    EXPECT_THROW(CheckedCues({cue(0, 1, u"好"_s)}, {}, noCheck).findings(limits(), grid, cancel), Cancelled);
}
