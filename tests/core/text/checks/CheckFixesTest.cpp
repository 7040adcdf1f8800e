#include "core/text/checks/CheckFixes.h"

#include "core/PlatformError.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const auto noCheck = [] {};
const auto all = [](qsizetype, CheckRule) { return true; };
constexpr FrameGrid grid{.numerator = 25, .denominator = 1};

Subtitle cue(qint64 start, qint64 end, const QString &text)
{
    return {.id = start, .start = start, .end = end, .text = text};
}

QList<Subtitle> fixed(const QList<Subtitle> &items, const std::set<CheckRule> &rules)
{
    return CheckFixes::fixed(items, rules, all, CheckLimits::builtIn().front(), grid, noCheck);
}

std::set<CheckRule> everyRule()
{
    return {CheckRules::all().begin(), CheckRules::all().end()};
}

} // namespace

TEST(CheckFixes, mends_times_without_touching_texts)
{
    const QString seven = u"一二三四五六七"_s;
    struct Case
    {
        CheckRule rule;
        qint64 end;
        qint64 nextStart;
        qint64 fixedEnd;
    };
    for (const Case &each : {
             Case{CheckRule::smallGap, 950, 1'000, 1'000},
             Case{CheckRule::smallGap, 920, 1'000, 920},
             Case{CheckRule::overlap, 1'200, 1'000, 1'000},
             Case{CheckRule::overlap, 1'200, 699, 1'200},
             Case{CheckRule::tooShort, 500, 1'000, 720}, // To the end of a frame.
             Case{CheckRule::tooShort, 500, 780, 780},   // A gap of less than two frames would be left.
             Case{CheckRule::tooShort, 500, 690, 500},   // Would be too short still.
             Case{CheckRule::readingSpeed, 500, 1'000, 600},
             Case{CheckRule::readingSpeed, 500, 584, 584},
             Case{CheckRule::readingSpeed, 500, 583, 500},
         }) {
        const QList<Subtitle> items = {cue(0, each.end, seven), cue(each.nextStart, 3'000, u"走"_s)};
        QList<Subtitle> expected = items;
        expected[0].end = each.fixedEnd;
        EXPECT_EQ(fixed(items, {each.rule}), expected) << each.end << ' ' << each.nextStart;
    }
    EXPECT_EQ(fixed({cue(47, 1'055, seven)}, {CheckRule::offFrame}).at(0).start, 40);
    EXPECT_EQ(fixed({cue(47, 1'055, seven)}, {CheckRule::offFrame}).at(0).end, 1'040);
    EXPECT_EQ(fixed({cue(42, 44, seven)}, {CheckRule::offFrame}).at(0).end, 44);
    EXPECT_EQ(fixed({cue(0, 6'990, seven), cue(7'050, 9'000, seven)}, {CheckRule::smallGap}).at(0).end, 6'990);
}

TEST(CheckFixes, mends_texts_without_touching_times)
{
    for (const auto &[before, after] : {
             std::pair(u" 你好 \n\n世界　"_s, u"你好\n世界"_s),
             {u"你好,世界(好)!"_s, u"你好，世界（好）！"_s},
             {u"用Rec.709,ＯＫ，１２"_s, u"用Rec.709,OK，12"_s},
             {u"Hello，world！"_s, u"Hello, world!"_s},
             {u"\uFEFF你\u0007好\u200B"_s, u"你好"_s},
             {u"a\uFFFDb"_s, u"a\uFFFDb"_s},
             {u"\u200B"_s, u"\u200B"_s},
             {u"其它 其他"_s, u"其他 其他"_s},
             {u"iPhone iPhone Iphone myIphone2"_s, u"iPhone iPhone iPhone myIphone2"_s},
         })
        EXPECT_EQ(fixed({cue(0, 5'000, before)}, everyRule()).at(0).text.toStdString(), after.toStdString());
}

TEST(CheckFixes, joins_a_cue_that_is_there_several_times)
{
    const QList<Subtitle> items = {cue(0, 1'000, u"好"_s), cue(1'000, 2'000, u"好"_s), cue(2'040, 3'000, u"好"_s),
                                   cue(4'000, 5'000, u"好"_s)};
    EXPECT_EQ(fixed(items, {CheckRule::doubled}), (QList<Subtitle>{cue(0, 3'000, u"好"_s), items[3]}));
    EXPECT_EQ(fixed({cue(0, 4'000, u"好"_s), cue(4'000, 8'000, u"好"_s)}, {CheckRule::doubled}).size(), 2);
}

TEST(CheckFixes, fixes_only_what_is_chosen)
{
    const QList<Subtitle> items = {cue(0, 1'000, u" 好"_s), cue(1'010, 2'000, u" 走"_s)};
    const auto second = [](qsizetype position, CheckRule rule) { return position == 1 && rule == CheckRule::blanks; };
    const QList<Subtitle> result =
        CheckFixes::fixed(items, everyRule(), second, CheckLimits::builtIn().front(), grid, noCheck);
    EXPECT_EQ(result, (QList<Subtitle>{items[0], cue(1'010, 2'000, u"走"_s)}));
}

TEST(CheckFixes, finds_nothing_more_to_fix_afterwards)
{
    Generator generator(3);
    QList<Subtitle> items = generator.cues(2'000);
    for (Subtitle &item : items) {
        if (generator.chance(20))
            item.end += generator.number(-90, 300);
        if (generator.chance(30))
            item.text += generator.pick(QStringList{u" "_s, u","_s, u"\n"_s, u"\u200B"_s, u"ＡＢ"_s, u"iPhone"_s,
                                                    u"Iphone"_s, u"其它"_s, u"其他"_s, u" \uFEFF "_s});
        if (generator.chance(10))
            item.text = u"好"_s;
        item.end = std::max(item.end, item.start + 1);
    }
    const CheckLimits limits = CheckLimits::builtIn().front();
    const QList<Subtitle> once = fixed(items, everyRule());
    EXPECT_NE(once, items);
    EXPECT_EQ(fixed(once, everyRule()), once);
    for (const CheckFinding &finding : CheckedCues(once, limits.terms, noCheck).findings(limits, grid, noCheck))
        EXPECT_FALSE(finding.isFixable) << finding.message().toStdString();
}

TEST(CheckLimits, are_read_as_they_are_written)
{
    for (const CheckLimits &limits : CheckLimits::builtIn())
        EXPECT_EQ(CheckLimits::read(limits.written()), limits);
    for (const char *const refused : {R"({"lines":0})", R"({"columns":0.5})", R"({"off":["nonsense"]})",
                                      R"({"line":2})", R"({"terms":[[""]]})", R"({"shortestMS":"1"})"})
        EXPECT_THROW(CheckLimits::read(refused), PlatformError) << refused;
    const CheckLimits limits = CheckLimits::read(R"({"off":["brackets"],"lines":1})");
    EXPECT_FALSE(limits.looksAt(CheckRule::brackets));
    EXPECT_EQ(limits.lines, 1);
    EXPECT_EQ(limits.shortestMS, 700);
}
