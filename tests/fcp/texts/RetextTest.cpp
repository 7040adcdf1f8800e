#include "fcp/texts/Retext.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/texts/TextDifference.h"
#include "tests/support/Generator.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray document(const QByteArray &titles)
{
    return StoryDocument::project("100s", {textTag("gap offset=0s start=3600s duration=100s", titles)});
}

QByteArray title(const QByteArray &seconds, const QByteArray &texts, const QByteArray &more = {})
{
    return "<title ref='title' lane='1' offset='" + QByteArray::number(3600 + seconds.toInt()) +
           "s' duration='2s' name='N'>" + texts + "<text-style-def id='d" + seconds +
           "'><text-style font='A'/></text-style-def>" + more + "</title>";
}

QByteArray one(const QByteArray &seconds, const QByteArray &text)
{
    return title(seconds, "<text><text-style ref='d" + seconds + "'>" + text + "</text-style></text>");
}

Subtitle cue(qint64 seconds, const QString &text, qint64 id = 1)
{
    return {.id = id, .start = seconds * 1000, .end = seconds * 1000 + 2000, .text = text};
}

QList<Subtitle> cuesOf(const QByteArray &bytes)
{
    const XmlDocument tree = XmlDocument::parse(bytes, {});
    return ProjectTexts::read(tree, FCPXML::project(tree)).at(0).items;
}

struct Rewriting
{
    const char *name;
    QByteArray before; ///< The children of a title.
    const char *says;  ///< What its cue is to say; | for a line break.
    QByteArray after;
    bool styles = false;
};

class Rewrites : public ::testing::TestWithParam<Rewriting>
{};

const QByteArray styles = "<text-style-def id='a'><text-style font='A' kerning='1'/></text-style-def>"
                          "<text-style-def id='b'><text-style font='A'/></text-style-def>"
                          "<text-style-def id='c'><text-style font='C'/></text-style-def>";

QByteArray runs(const QByteArrayList &texts, const QByteArrayList &refs)
{
    QByteArray xml = "<text>";
    for (qsizetype i = 0; i < texts.size(); ++i)
        xml += "\n <text-style ref='" + refs[i] + "'>" + texts[i] + "</text-style>";
    return xml + "\n</text>";
}

const QList<Rewriting> rewritings{
    {"one_run", runs({"你好"}, {"a"}), "再见", runs({"再见"}, {"a"})},
    {"what_xml_reserves", runs({"a &amp; b"}, {"a"}), "a < b", runs({"a &lt; b"}, {"a"})},
    {"white_space_around_it", runs({"\n\t你好\n"}, {"a"}), "您|好", runs({"\n\t您\n好\n"}, {"a"})},
    {"a_section", runs({"<![CDATA[你]]>好"}, {"a"}), "你们好", runs({"你们好"}, {"a"})},
    {"a_last_character_of_its_own", runs({"Introducin", "g"}, {"a", "b"}), "Introduction",
     runs({"Introduction", ""}, {"a", "b"})},
    {"the_first_of_two_styles", runs({"红", "白"}, {"a", "c"}), "绿白", runs({"绿", "白"}, {"a", "c"})},
    {"the_last_of_two_styles", runs({"红", "白"}, {"a", "c"}), "红黑", runs({"红", "黑"}, {"a", "c"})},
    {"an_insertion_between_styles", runs({"红", "白"}, {"a", "c"}), "红的白", runs({"红的", "白"}, {"a", "c"})},
    {"words_across_styles", runs({"红花", "白云"}, {"a", "c"}), "红叶水云", runs({"红叶水", "云"}, {"a", "c"}), true},
    {"half_of_a_pair_in_common", runs({"😀"}, {"a"}), "😁", runs({"😁"}, {"a"})},
    {"two_fields", "<text><text-style>张三</text-style></text><text/><text><text-style>导演</text-style></text>",
     "李四|导演", "<text><text-style>李四</text-style></text><text/><text><text-style>导演</text-style></text>"},
    {"a_field_that_grows", "<text><text-style>张三</text-style></text><text><text-style>导演</text-style></text>",
     "张三|导演|编剧", "<text><text-style>张三</text-style></text><text><text-style>导演\n编剧</text-style></text>"},
    {"bare_text", "<text>早</text>", "晚", "<text>晚</text>"},
};

TEST_P(Rewrites, a_new_text_touches_nothing_else)
{
    const auto around = [](const QByteArray &texts) {
        return document("<!-- <title> -->\n" + one("1", "前") + title("5", texts, styles) + "<?keep <text>?>");
    };
    const QString says = QString::fromUtf8(GetParam().says).replace(u'|', u'\n');
    const auto result = Retext::apply(around(GetParam().before), {.cues = {cue(1, u"前"_s, 1), cue(5, says, 2)}});
    EXPECT_EQ(result.document.toStdString(), around(GetParam().after).toStdString());
    ASSERT_EQ(result.receipt.changed.size(), 1);
    EXPECT_EQ(result.receipt.changed[0].styles, GetParam().styles);
    EXPECT_TRUE(result.receipt.moved.isEmpty() && result.receipt.added.isEmpty() && result.receipt.removed.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Retext, Rewrites, ::testing::ValuesIn(rewritings),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(Retext, the_name_follows_the_text_that_it_repeated)
{
    const auto named = [](const QByteArray &name, const QByteArray &text) {
        return document("<title ref='title' name='" + name +
                        "' lane='1' offset='3601s' duration='2s'><text><text-style>" + text +
                        "</text-style></text></title>");
    };
    const QList<Subtitle> cues{cue(1, u"新\"的\n话"_s)};
    const auto apply = [&](const QByteArray &name) {
        return Retext::apply(named(name, "旧的\n话"), {.cues = cues}).document.toStdString();
    };
    EXPECT_EQ(apply("旧的 话"), named("新&quot;的 话", "新\"的\n话").toStdString());
    EXPECT_EQ(apply("旧的 话 - Basic Title"), named("新&quot;的 话 - Basic Title", "新\"的\n话").toStdString());
    EXPECT_EQ(apply("旧的 话题"), named("旧的 话题", "新\"的\n话").toStdString());
}

TEST(Retext, of_nothing_is_the_same_bytes)
{
    Generator generator(3);
    const QList<Subtitle> cues = generator.cues(200);
    const QByteArray ours = FCPXML::convert(cues, std::nullopt, {}).toUtf8();
    EXPECT_TRUE(Retext::apply(ours, {.cues = cuesOf(ours)}).document == ours);
    QByteArray odd = "\xEF\xBB\xBF" + document(one("1", "a &#x4F60;") + one("9", "&lt;i&gt;b")).replace("\"", "'");
    odd.replace("\n", "\r\n");
    EXPECT_TRUE(Retext::apply(odd, {.cues = cuesOf(odd)}).document == odd);
    // A file of subtitles cannot hold the tag: what it makes of the text is no change.
    EXPECT_TRUE(Retext::apply(odd, {.cues = {cue(1, u"a 你"_s), cue(9, u"b"_s)}}).document == odd);
}

TEST(Retext, every_text_of_a_project_can_change)
{
    Generator generator(4);
    const QList<Subtitle> cues = generator.cues(200);
    const QByteArray ours = FCPXML::convert(cues, std::nullopt, {}).toUtf8();
    QList<Subtitle> other = cuesOf(ours);
    for (Subtitle &each : other)
        each.text = u"& "_s + generator.speech(1, 9) + u" 译"_s;
    const auto result = Retext::apply(ours, {.cues = other});
    EXPECT_EQ(cuesOf(result.document), other);
    EXPECT_EQ(result.receipt.changed.size(), 200);
}

TEST(Retext, documents_in_other_encodings_become_utf8)
{
    const QString text = QString::fromUtf8(document(one("1", "旧")));
    QByteArray utf16 = "\xFF\xFE";
    const QString declared = QString(text).replace(u"UTF-8"_s, u"UTF-16"_s);
    utf16.append(reinterpret_cast<const char *>(declared.utf16()), declared.size() * 2);
    EXPECT_EQ(cuesOf(Retext::apply(utf16, {.cues = {cue(1, u"新"_s)}}).document)[0].text, u"新"_s);
}

/// What happened, in short.
std::string summary(const Retext::Receipt &receipt)
{
    QStringList words;
    for (const auto &each : receipt.changed)
        words.append(u"%1→%2"_s.arg(each.before, each.after));
    for (const auto &each : receipt.moved)
        words.append(u"%1: %2→%3"_s.arg(each.cue.text).arg(each.start).arg(each.cue.start));
    for (const Subtitle &each : receipt.added)
        words.append(u"+%1"_s.arg(each.text));
    for (const Subtitle &each : receipt.removed)
        words.append(u"-%1"_s.arg(each.text));
    for (const auto &each : receipt.refused)
        words.append(u"!%1"_s.arg(each.reason));
    return words.join(u", "_s).toStdString();
}

struct Matching
{
    const char *name;
    QList<Subtitle> cues;
    const char *expected;
    QList<TextOrigin> origins = {};
};

class Matches : public ::testing::TestWithParam<Matching>
{};

const QList<Matching> matchings{
    {"by_frame_whatever_the_order", {cue(30, u"丙"_s), cue(10, u"甲"_s), cue(20, u"新"_s)}, "乙→新"},
    {"within_half_a_frame",
     {{.id = 1, .start = 10'019, .end = 12'019, .text = u"新"_s}, cue(20, u"乙"_s), cue(30, u"丙"_s)},
     "甲→新"},
    {"by_order_when_all_is_shifted",
     {cue(11, u"甲"_s), cue(21, u"新"_s), cue(31, u"丙"_s)},
     "乙→新, 甲: 10000→11000, 新: 20000→21000, 丙: 30000→31000"},
    {"what_has_no_title", {cue(10, u"甲"_s), cue(20, u"乙"_s), cue(25, u"多"_s), cue(30, u"丙"_s)}, "+多"},
    {"what_has_no_cue", {cue(10, u"甲"_s), cue(30, u"丙"_s)}, "-乙"},
    {"by_text_among_unequal_numbers",
     {cue(10, u"甲"_s), cue(15, u"多"_s), cue(22, u"乙"_s), cue(30, u"丙"_s)},
     "乙: 20000→22000, +多"},
    {"by_origin_wherever_it_went",
     {cue(20, u"丙新"_s, 7), cue(10, u"甲"_s, 8), cue(30, u"乙"_s, 9)},
     "丙→丙新, 丙新: 30000→20000, 乙: 20000→30000",
     {{.cue = 7, .number = 2, .text = u"丙"_s}, {.cue = 9, .number = 1, .text = u"乙"_s}}},
    {"by_frame_where_the_origin_says_something_else",
     {cue(10, u"甲"_s, 7), cue(20, u"乙"_s, 8), cue(30, u"丙"_s, 9)},
     "",
     {{.cue = 7, .number = 2, .text = u"旧"_s}}},
};

TEST_P(Matches, a_cue_finds_its_title)
{
    const QByteArray project = document(one("10", "甲") + one("20", "乙") + one("30", "丙"));
    const auto result = Retext::apply(project, {.cues = GetParam().cues, .origins = GetParam().origins});
    EXPECT_EQ(summary(result.receipt), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Retext, Matches, ::testing::ValuesIn(matchings),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(Retext, moves_additions_and_removals_are_done_when_asked)
{
    const QByteArray project = document(one("10", "甲") + one("20", "乙") + one("30", "丙"));
    QList<Subtitle> cues{cue(11, u"甲"_s), cue(28, u"丙"_s), cue(50, u"丁 & 戊"_s)};
    cues[0].end = 13'500;
    cues[1].id = 2;
    cues[2].id = 3;
    const auto listed = Retext::apply(project, {.cues = cues, .origins = {{.cue = 1, .number = 0, .text = u"甲"_s}}});
    EXPECT_TRUE(listed.document == project);
    const auto done = Retext::apply(
        project, {.cues = cues,
                  .origins = {{.cue = 1, .number = 0, .text = u"甲"_s}, {.cue = 2, .number = 2, .text = u"丙"_s}},
                  .scope = Retext::Scope::everything});
    EXPECT_EQ(summary(done.receipt), "甲: 10000→11000, 丙: 30000→28000, +丁 & 戊, -乙");
    cues[0].end = 13'520;
    EXPECT_EQ(cuesOf(done.document), cues);
    EXPECT_TRUE(done.document.contains("id='substyle1'") && done.document.contains("ref='substyle1'"));
}

TEST(Retext, what_would_disturb_a_storyline_is_left_and_said)
{
    const QByteArray project =
        StoryDocument::project("100s", {Tag{.name = "title",
                                            .attributes = " offset='10s' duration='2s'",
                                            .children = {tag("text", {textTag("text-style", "甲")})}}});
    const auto result = Retext::apply(project, {.cues = {cue(11, u"乙"_s)}, .scope = Retext::Scope::everything});
    EXPECT_EQ(summary(result.receipt),
              "甲→乙, 乙: 10000→11000, !标题在故事情节中，移动会影响相邻片段，请在 FCP 中调整");
    EXPECT_EQ(cuesOf(result.document), (QList<Subtitle>{cue(10, u"乙"_s)}));
}

TEST(Retext, a_text_that_tells_no_field_is_refused)
{
    const QByteArray project =
        document(title("5", "<text><text-style>张三</text-style></text><text><text-style>导演</text-style></text>"));
    const auto result = Retext::apply(project, {.cues = {cue(5, u"甲\n乙\n丙"_s)}});
    EXPECT_TRUE(result.document == project);
    EXPECT_EQ(summary(result.receipt), "!标题有多个文本栏，无法判断改动属于哪一栏");
}

/// What guards the user's document: a writer that changes more than words must not get through.
TEST(TextDifference, words_may_differ_and_nothing_else)
{
    const QByteArray note = "<note>n</note>";
    const QByteArray bytes = "<fcpxml><title name='N' lane='1'><text><text-style ref='a'>甲</text-style></text>" +
                             note + "</title></fcpxml>";
    const struct
    {
        QByteArray from; ///< In the document above.
        QByteArray to;
        bool isAll;
    } rows[] = {
        {"甲", "乙", true},
        {"name='N'", "name='M'", true},
        {"lane='1'", "lane='2'", false},
        {" lane='1'", "", false},
        {"lane='1'", "lane='1' role='r'", false},
        {"lane=", "line=", false},
        {"ref='a'", "ref='b'", false},
        {note, "<note>m</note>", false},
        {note, "", false},
        {note, note + note, false},
        {note, "<text>n</text>", false},
        {note, "<note name='x'>n</note>", false},
    };
    const XmlDocument before = XmlDocument::parse(bytes, {});
    for (const auto &[from, to, isAll] : rows) {
        const XmlDocument after = XmlDocument::parse(QByteArray(bytes).replace(from, to), {});
        EXPECT_EQ(TextDifference::isAll(before, after), isAll) << to.toStdString();
        EXPECT_EQ(TextDifference::isAll(after, before), isAll) << to.toStdString();
    }
}

TEST(Retext, a_cancel_is_felt_in_reading_and_in_comparing)
{
    QByteArray titles;
    for (int i = 0; i < 600; ++i)
        titles += one(QByteArray::number(i), "字");
    const QByteArray project = document(titles);
    int calls = 0;
    const auto run = [&](int last) {
        int made = 0;
        const Check check = [&] {
            if (++made == last)
                throw Cancelled();
            ++calls;
        };
        Retext::apply(project, {.cues = {cue(1, u"新"_s)}}, check);
    };
    run(0);
    EXPECT_GE(calls, 8) << "3,000 elements read twice and compared";
    for (int last = 1, all = calls; last <= all; ++last)
        EXPECT_THROW(run(last), Cancelled);
}

TEST(Retext, the_track_must_be_clear)
{
    const QByteArray project = document(one("1", "甲") + QByteArray(one("2", "乙")).replace("lane='1'", "lane='2'"));
    const auto message = [&](const QString &track) {
        try {
            Retext::apply(project, {.track = track, .cues = {cue(1, u"新"_s)}});
            return std::string();
        } catch (const ConversionError &error) {
            return error.message().toStdString();
        }
    };
    EXPECT_EQ(message({}), "项目中有多条字幕轨，请指定其中一条：标题 1、标题 2。");
    EXPECT_EQ(message(u"标题"_s), "项目中没有名为“标题”的字幕轨。");
    EXPECT_EQ(message(u"标题 1"_s), "");
}

} // namespace
