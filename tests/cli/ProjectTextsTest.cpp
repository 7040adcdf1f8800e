#include "core/files/FileReader.h"
#include "tests/support/CommandTest.h"
#include "tests/support/StoryDocument.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Tag text(const QByteArray &content)
{
    return tag("text", {textTag("text-style ref=ts1", content)});
}

Tag title(const QByteArray &attributes, const QByteArray &content)
{
    return tag("title ref=title " + attributes, {text(content)});
}

/// A folder with projects that hold titles.
class ProjectTextsTest : public CommandTest
{
protected:
    ProjectTextsTest()
    {
        file(u"one.fcpxml"_s,
             StoryDocument::project("20s", {tag("gap offset=0s duration=20s",
                                                {title("lane=1 offset=1s duration=2s", "你好"),
                                                 title("lane=1 offset=5s duration=2s name=藏 enabled=0", "隐藏"),
                                                 title("lane=1 offset=7s duration=1s", "再见")})}));
        file(u"two.fcpxml"_s,
             StoryDocument::project("20s", {tag("gap offset=0s duration=20s",
                                                {title("lane=1 offset=1s duration=2s role=中/文", "你好"),
                                                 title("lane=2 offset=1s duration=2s role=English", "Hello")})}));
        file(u"bare.fcpxml"_s, StoryDocument::project("20s", {tag("gap offset=0s duration=20s")}));
    }

    QByteArray content(const QString &name) const { return FileReader::readAll(path(name)); }

    CommandLine::Outcome run(const QString &command, const QString &input, const QStringList &arguments = {}) const
    {
        return CommandLine::run(QStringList{command, path(input)} + arguments);
    }
};

TEST_F(ProjectTextsTest, extract_writes_what_stands_in_a_project)
{
    const QByteArray srt = "1\n00:00:01,000 --> 00:00:03,000\n你好\n\n2\n00:00:07,000 --> 00:00:08,000\n再见\n";
    const auto outcome = run(u"extract"_s, u"one.fcpxml"_s);
    EXPECT_EQ(outcome.output.trimmed().toStdString(), srt.trimmed().toStdString());
    expectOutcome(
        run(u"extract"_s, u"one.fcpxml"_s, {u"--json"_s}), 0,
        R"([{"items":[{"end":3000,"id":1,"start":1000,"text":"你好"},{"end":8000,"id":2,"start":7000,"text":"再见"}],)"
        R"("label":"标题","lane":1,"role":"","skipped":[{"name":"藏","reason":"已停用"}]}])"
        "\n",
        "");
}

TEST_F(ProjectTextsTest, extract_writes_a_file_for_each_track)
{
    expectOutcome(run(u"extract"_s, u"two.fcpxml"_s), 1, "", "项目中有 2 条字幕轨，请用 --into 分别写入文件夹。\n");
    expectOutcome(run(u"extract"_s, u"two.fcpxml"_s, {u"--into"_s, path(u"out"_s)}), 0, "", "");
    EXPECT_EQ(QDir(path(u"out"_s)).entryList(QDir::Files, QDir::Name), (QStringList{u"English.srt"_s, u"中_文.srt"_s}));
    EXPECT_TRUE(content(u"out/English.srt"_s).contains("Hello"));
}

TEST_F(ProjectTextsTest, extract_says_what_it_cannot_read)
{
    expectOutcome(run(u"extract"_s, u"bare.fcpxml"_s), 1, "", "项目中没有可读取的字幕。\n");
    expectOutcome(run(u"extract"_s, u"bare.fcpxml"_s, {u"--json"_s}), 0, "[]\n", "");
    expectOutcome(run(u"extract"_s, u"one.fcpxml"_s, {u"--project"_s, u"别的"_s}), 1, "", "找不到名为“别的”的项目。\n");
    EXPECT_EQ(run(u"extract"_s, u"one.fcpxml"_s, {u"--project"_s, u"Film"_s}).status, 0);
    EXPECT_EQ(run(u"extract"_s, u"one.fcpxml"_s, {u"--into"_s, path(u"x"_s), u"-o"_s, path(u"y"_s)}).status, 2);
}

TEST_F(ProjectTextsTest, retext_puts_texts_back_and_tells_of_the_rest)
{
    file(u"new.srt"_s, "1\n00:00:01,000 --> 00:00:03,000\n您好\n\n2\n00:00:09,000 --> 00:00:10,000\n再见\n");
    const QString out = path(u"out.fcpxml"_s);
    expectOutcome(
        run(u"retext"_s, u"one.fcpxml"_s, {path(u"new.srt"_s), u"-o"_s, out, u"--json"_s}), 0,
        R"({"added":[],"changed":[{"after":"您好","before":"你好","cue":1,"styles":false}],)"
        R"("moved":[{"cue":2,"end":10000,"fromEnd":8000,"fromStart":7000,"start":9000}],"refused":[],"removed":[]})"
        "\n",
        "");
    EXPECT_EQ(content(u"out.fcpxml"_s), content(u"one.fcpxml"_s).replace("你好", "您好"));
    EXPECT_EQ(run(u"retext"_s, u"one.fcpxml"_s, {path(u"new.srt"_s), u"-o"_s, out, u"--moves"_s}).status, 0);
    EXPECT_TRUE(content(u"out.fcpxml"_s).contains("offset=\"9s\""));
    const auto kept = content(u"out.fcpxml"_s);
    EXPECT_EQ(run(u"retext"_s, u"bare.fcpxml"_s, {path(u"new.srt"_s), u"-o"_s, out}).status, 1);
    EXPECT_EQ(content(u"out.fcpxml"_s), kept);
}

TEST_F(ProjectTextsTest, validate_says_what_is_wrong_and_ends_accordingly)
{
    file(u"good.fcpxml"_s, "<fcpxml version='1.10'><resources/></fcpxml>");
    file(u"warned.fcpxml"_s, "<fcpxml version='1.5'/>");
    file(u"bad.fcpxml"_s, "<fcpxml version='1.10'>\n<wrong/></fcpxml>");
    expectOutcome(run(u"validate"_s, u"good.fcpxml"_s, {u"--json"_s, u"--strict"_s}), 0, "[]\n", "");
    EXPECT_EQ(run(u"validate"_s, u"warned.fcpxml"_s).status, 0);
    EXPECT_EQ(run(u"validate"_s, u"warned.fcpxml"_s, {u"--strict"_s}).status, 1);
    expectOutcome(run(u"validate"_s, u"bad.fcpxml"_s), 1,
                  "第 2 行 wrong：错误，这个版本没有此元素。删除此元素，或改用支持它的版本。\n",
                  "文档有 1 处错误、0 处警告。\n");
    expectOutcome(
        run(u"validate"_s, u"bad.fcpxml"_s, {u"--json"_s}), 1,
        R"([{"element":"wrong","fix":"删除此元素，或改用支持它的版本。","line":2,"message":"这个版本没有此元素。",)"
        R"("rule":"dtd.element","severity":"error"}])"
        "\n",
        "文档有 1 处错误、0 处警告。\n");
}

TEST_F(ProjectTextsTest, merge_writes_one_bilingual_track)
{
    file(u"a.srt"_s, "1\n00:00:01,000 --> 00:00:03,000\n你好\n");
    file(u"b.srt"_s, "1\n00:00:01,100 --> 00:00:03,000\nHello\n\n2\n00:00:05,000 --> 00:00:06,000\nBye\n");
    expectOutcome(run(u"merge"_s, u"a.srt"_s, {path(u"b.srt"_s), u"--json"_s, u"--separator"_s, u"|"_s}), 0,
                  R"({"items":[{"end":3000,"id":1,"start":1000,"text":"你好|Hello"},)"
                  R"({"end":6000,"id":2,"start":5000,"text":"Bye"}],"unmatchedA":[],)"
                  R"("unmatchedB":[{"end":6000,"id":2,"start":5000,"text":"Bye"}]})"
                  "\n",
                  "");
    EXPECT_TRUE(run(u"merge"_s, u"a.srt"_s, {path(u"b.srt"_s)}).output.contains("你好\nHello\n"));
}

TEST_F(ProjectTextsTest, titles_offer_a_way_on_where_a_project_refuses)
{
    file(u"long.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n一\n\n2\n00:00:19,000 --> 00:00:25,000\n二\n");
    const QStringList into{u"--base"_s, path(u"bare.fcpxml"_s)};
    expectOutcome(run(u"titles"_s, u"long.srt"_s, into), 1, "", "字幕超出项目时长，请检查音频版本或时间偏移。\n");
    const auto dropped =
        run(u"titles"_s, u"long.srt"_s, into + QStringList{u"--past-end"_s, u"drop"_s, u"--progress"_s});
    EXPECT_EQ(dropped.output.count("<title "), 1);
    EXPECT_TRUE(dropped.error.contains("跳过第 2 条字幕：超出项目时长"));
    EXPECT_EQ(run(u"titles"_s, u"long.srt"_s, into + QStringList{u"--past-end"_s, u"cut"_s}).output.count("<title "),
              2);
    EXPECT_EQ(run(u"titles"_s, u"long.srt"_s, into + QStringList{u"--past-end"_s, u"keep"_s}).status, 2);
    EXPECT_EQ(run(u"titles"_s, u"long.srt"_s, {u"--skip-retimed"_s}).status, 2);
}

TEST_F(ProjectTextsTest, titles_can_be_captions)
{
    file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n一\n");
    const auto made = [&](const QStringList &arguments) { return run(u"titles"_s, u"in.srt"_s, arguments); };
    EXPECT_TRUE(made({u"--captions"_s, u"itt"_s, u"--language"_s, u"zh-Hans"_s})
                    .output.contains("role=\"iTT?captionFormat=ITT.cmn-Hans\""));
    EXPECT_TRUE(
        made({u"--captions"_s, u"srt"_s, u"--language"_s, u"en"_s}).output.contains("\"SRT?captionFormat=SRT.en\""));
    EXPECT_EQ(made({u"--captions"_s, u"itt"_s}).status, 2);
    EXPECT_EQ(made({u"--language"_s, u"en"_s}).status, 2);
    EXPECT_EQ(made({u"--captions"_s, u"itt"_s, u"--language"_s, u"中文"_s}).status, 2);
}

TEST_F(ProjectTextsTest, titles_take_several_tracks)
{
    file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n一\n");
    file(u"en.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\none\n");
    const QStringList tracks{u"--track"_s, path(u"en.srt"_s), u"--track"_s, path(u"en.srt"_s)};
    for (const QStringList &into : {QStringList(), QStringList{u"--clip"_s}}) {
        const QByteArray written = run(u"titles"_s, u"in.srt"_s, tracks + into).output;
        for (const char *const lane : {"lane=\"1\"", "lane=\"2\"", "lane=\"3\""})
            EXPECT_EQ(written.count(lane), 1) << lane;
    }
    EXPECT_EQ(run(u"titles"_s, u"in.srt"_s, {u"--track-preset"_s, u"x"_s}).status, 2);
    EXPECT_EQ(
        run(u"titles"_s, u"in.srt"_s, tracks + QStringList{u"--captions"_s, u"itt"_s, u"--language"_s, u"en"_s}).status,
        2);
    expectOutcome(run(u"titles"_s, u"in.srt"_s, tracks + QStringList{u"--track-preset"_s, u"没有"_s}), 1, "",
                  "没有名为“没有”的样式预设。\n");
}

TEST_F(ProjectTextsTest, titles_look_like_one_of_the_users_own)
{
    file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n新字\n");
    file(u"own.fcpxml"_s,
         StoryDocument::project(
             "20s", {tag("gap offset=0s duration=20s",
                         {tag("title ref=title lane=1 offset=1s duration=2s",
                              {text("你好"), tag("text-style-def id=ts1", {tag("text-style font=Kaiti")})})})}));
    const QString own = path(u"own.fcpxml"_s);
    const auto made = run(u"titles"_s, u"in.srt"_s, {u"--template"_s, own});
    EXPECT_TRUE(made.output.contains("font=\"Kaiti\"")) << made.error.toStdString();
    EXPECT_TRUE(made.output.contains("新字"));
    expectOutcome(run(u"titles"_s, u"in.srt"_s, {u"--template"_s, own, u"--template-title"_s, u"没有"_s}), 1, "",
                  "项目中没有文字或名称为“没有”的标题。\n");
    EXPECT_EQ(run(u"titles"_s, u"in.srt"_s, {u"--template-title"_s, u"你好"_s}).status, 2);
    EXPECT_EQ(run(u"titles"_s, u"in.srt"_s, {u"--template"_s, own, u"--captions"_s, u"itt"_s, u"--language"_s, u"en"_s})
                  .status,
              2);
}

TEST_F(ProjectTextsTest, a_preset_keeps_the_look_of_a_title)
{
    file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n新字\n");
    file(u"own.fcpxml"_s,
         StoryDocument::project(
             "20s", {tag("gap offset=0s duration=20s",
                         {tag("title ref=title lane=1 offset=1s duration=2s",
                              {text("你好"), tag("text-style-def id=ts1", {tag("text-style font=Kaiti")})})})}));
    const auto added =
        CommandLine::run({u"presets"_s, u"add"_s, u"自己的标题"_s, u"--template"_s, path(u"own.fcpxml"_s)});
    EXPECT_EQ(added.status, 0) << added.error.toStdString();
    const QByteArray direct = run(u"titles"_s, u"in.srt"_s, {u"--template"_s, path(u"own.fcpxml"_s)}).output;
    EXPECT_EQ(run(u"titles"_s, u"in.srt"_s, {u"--preset"_s, u"自己的标题"_s}).output, direct);
    const QByteArray second =
        run(u"titles"_s, u"in.srt"_s, {u"--track"_s, path(u"in.srt"_s), u"--track-preset"_s, u"自己的标题"_s}).output;
    EXPECT_EQ(second.count("font=\"Kaiti\""), 1);
    EXPECT_EQ(CommandLine::run({u"presets"_s, u"remove"_s, u"自己的标题"_s}).status, 0);
}

TEST_F(ProjectTextsTest, titles_say_what_their_document_is_held_against)
{
    file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n一\n");
    const auto clean = run(u"titles"_s, u"in.srt"_s, {u"--progress"_s, u"-o"_s, path(u"out.fcpxml"_s)});
    EXPECT_EQ(clean.error.toStdString(), "已写入 1 条字幕标题\n文档检查：没有发现问题\n");
    file(u"odd.fcpxml"_s, content(u"bare.fcpxml"_s).replace("<gap ", "<gap lane='1' "));
    const auto odd = run(u"titles"_s, u"in.srt"_s, {u"--progress"_s, u"--base"_s, path(u"odd.fcpxml"_s)});
    EXPECT_TRUE(odd.error.contains("文档检查：")) << odd.error.toStdString();
    EXPECT_FALSE(odd.error.contains("没有发现问题"));
}

} // namespace
