#include "core/files/FileReader.h"
#include "tests/support/CommandTest.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A folder with a bilingual subtitle file of three cues.
class TextToolsTest : public CommandTest
{
protected:
    TextToolsTest()
    {
        file(u"in.srt"_s, "1\n00:00:00,000 --> 00:00:03,000\n嗯，你好，世界。\nHello, world\n\n"
                          "2\n00:00:03,000 --> 00:00:04,000\n哈哈哈！\n\n"
                          "3\n00:00:04,000 --> 00:00:06,000\n再见\nПока\n");
    }

    /// Runs `command` on the file with `arguments`.
    CommandLine::Outcome run(const QString &command, const QStringList &arguments, const QByteArray &input = {}) const
    {
        return CommandLine::run(QStringList{command, path(u"in.srt"_s)} + arguments, input);
    }
};

QByteArray wrongUse(const QByteArray &problem)
{
    return problem + "\n用法见 lintora-cli --help 或 lintora-cli 命令 --help\n";
}

} // namespace

TEST_F(TextToolsTest, clean_removes_fillers_and_splits)
{
    expectOutcome(run(u"clean"_s, {u"--fillers"_s, u"--split"_s, u"--json"_s}), 0,
                  "[{\"end\":529,\"id\":1,\"start\":176,\"text\":\"你好\"},"
                  "{\"end\":882,\"id\":2,\"start\":529,\"text\":\"世界\"},"
                  "{\"end\":1941,\"id\":3,\"start\":882,\"text\":\"Hello\"},"
                  "{\"end\":3000,\"id\":4,\"start\":1941,\"text\":\"world\"},"
                  "{\"end\":6000,\"id\":5,\"start\":4000,\"text\":\"再见\\nПока\"}]\n",
                  {});
    expectOutcome(run(u"clean"_s, {u"--fillers"_s, u"--progress"_s}), 0,
                  "1\n00:00:00,000 --> 00:00:03,000\n你好，世界。\nHello, world\n\n"
                  "2\n00:00:04,000 --> 00:00:06,000\n再见\nПока\n",
                  "已清理：3 条字幕变为 2 条\n");
}

TEST_F(TextToolsTest, clean_takes_a_word_list)
{
    const QByteArray cleaned = "[{\"end\":3000,\"id\":1,\"start\":0,\"text\":\"嗯，你好，界。\\nHello,\"},"
                               "{\"end\":4000,\"id\":2,\"start\":3000,\"text\":\"哈哈哈！\"},"
                               "{\"end\":6000,\"id\":3,\"start\":4000,\"text\":\"见\\nПока\"}]\n";
    for (const QByteArray &words : {QByteArray("world、再\r\n世"), QByteArray("\xEF\xBB\xBFworld;再\r世,世"),
                                    QByteArray("\xFF\xFEw\0o\0r\0l\0d\0,\0\x8D\x51\n\0\x16\x4E", 20)}) {
        expectOutcome(run(u"clean"_s, {u"--fillers"_s, u"--json"_s, u"--words"_s, file(u"words"_s, words)}), 0, cleaned,
                      {});
        expectOutcome(run(u"clean"_s, {u"--fillers"_s, u"--json"_s, u"--words"_s, u"-"_s}, words), 0, cleaned, {});
    }
    expectOutcome(run(u"clean"_s, {u"--fillers"_s, u"--words"_s, file(u"words"_s, "\xE5\x97")}), 1, {},
                  "文本编码不支持。请先另存为 UTF-8 或 UTF-16。\n");
    expectOutcome(run(u"clean"_s, {u"--words"_s, path(u"words"_s)}), 2, {},
                  wrongUse("请指定 --fillers、--split 或两者"));
    expectOutcome(CommandLine::run({u"clean"_s, u"-"_s, u"--split"_s, u"--words"_s, u"-"_s}), 2, {},
                  wrongUse("字幕与词表不能同时来自标准输入"));
}

TEST_F(TextToolsTest, replace_previews_and_applies)
{
    expectOutcome(run(u"replace"_s, {u"--find"_s, u"哈"_s, u"--with"_s, u""_s, u"--preview"_s}), 0,
                  "[{\"after\":\"！\",\"becomesEmpty\":false,\"id\":1,\"occurrences\":3}]\n", {});
    expectOutcome(run(u"replace"_s, {u"--find"_s, u"哈哈哈！"_s, u"--with"_s, u""_s, u"--preview"_s, u"--json"_s}), 0,
                  "[{\"after\":\"\",\"becomesEmpty\":true,\"id\":1,\"occurrences\":1}]\n", {});
    const QString out = file(u"out.srt"_s, "old");
    expectOutcome(
        run(u"replace"_s, {u"--find"_s, u"哈哈哈！"_s, u"--with"_s, u""_s, u"-o"_s, out, u"--json"_s, u"--progress"_s}),
        0,
        "{\"changedCues\":1,\"items\":[{\"end\":3000,\"id\":1,\"start\":0,\"text\":\"嗯，你好，世界。\\nHello, "
        "world\"},"
        "{\"end\":6000,\"id\":3,\"start\":4000,\"text\":\"再见\\nПока\"}],\"occurrences\":1}\n",
        "已替换 1 处，修改 1 条字幕\n");
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:00,000 --> 00:00:03,000\n嗯，你好，世界。\nHello, world\n\n"
                                        "2\n00:00:04,000 --> 00:00:06,000\n再见\nПока\n");
    EXPECT_EQ(run(u"replace"_s, {u"--find"_s, u"x"_s}).status, 2);
    EXPECT_EQ(run(u"replace"_s, {u"--find"_s, u"x"_s, u"--with"_s, u""_s, u"--preview"_s, u"-o"_s, out}).status, 2);
}

TEST_F(TextToolsTest, separate_writes_a_file_for_each_language)
{
    expectOutcome(run(u"separate"_s, {u"--into"_s, path(u"a/b"_s), u"--progress"_s}), 0, {},
                  "中文：3 条字幕\nEnglish：1 条字幕\n待归类：1 条字幕\n");
    EXPECT_EQ(names(u"a/b"_s), (QStringList{u"English.srt"_s, u"中文.srt"_s, u"待归类.srt"_s}));
    EXPECT_EQ(FileReader::readAll(path(u"a/b/English.srt"_s)), "1\n00:00:00,000 --> 00:00:03,000\nHello, world\n");
    EXPECT_EQ(FileReader::readAll(path(u"a/b/待归类.srt"_s)), "1\n00:00:04,000 --> 00:00:06,000\nПока\n");

    const QString small = file(u"small.srt"_s, "1\n00:00:00,000 --> 00:00:03,000\n你好<br/>Hello\n");
    expectOutcome(
        CommandLine::run({u"separate"_s, small, u"--json"_s}), 0,
        "[{\"group\":\"chinese\",\"items\":[{\"end\":3000,\"id\":1,\"start\":0,\"text\":\"你好\"}],\"label\":\"中文\"},"
        "{\"group\":\"english\",\"items\":[{\"end\":3000,\"id\":1,\"start\":0,\"text\":\"Hello\"}],\"label\":"
        "\"English\"}]\n",
        {});
}

TEST_F(TextToolsTest, separate_writes_nothing_without_both_languages)
{
    const QString chinese = file(u"zh.srt"_s, "1\n00:00:00,000 --> 00:00:03,000\n你好\nПока\n");
    expectOutcome(CommandLine::run({u"separate"_s, chinese, u"--json"_s, u"--into"_s, path(u"new"_s)}), 1, {},
                  "未发现可分离的中英字幕，请确认中文和英文分别占行\n");
    EXPECT_FALSE(QFile::exists(path(u"new"_s)));
    // A folder that cannot be written leaves the files of an earlier run as they were.
    QDir(path({})).mkpath(u"out/English.srt"_s);
    file(u"out/中文.srt"_s, "old");
    const auto blocked = run(u"separate"_s, {u"--into"_s, path(u"out"_s)});
    EXPECT_EQ(blocked.status, 1);
    EXPECT_FALSE(blocked.error.isEmpty());
    EXPECT_EQ(FileReader::readAll(path(u"out/中文.srt"_s)), "old");
    EXPECT_EQ(names(u"out"_s), QStringList{u"中文.srt"_s});
}

TEST_F(TextToolsTest, align_applies_what_is_selected)
{
    const QString script =
        file(u"script.txt"_s, "\xEF\xBB\xBF你好，世界！\rHello, World.\r\n多余的一段。\r\n再见，пока。");
    const QByteArray aligned = "1\n00:00:00,000 --> 00:00:03,000\n你好，世界！ Hello, World.\n\n"
                               "2\n00:00:03,000 --> 00:00:04,000\n哈哈哈！\n\n"
                               "3\n00:00:04,000 --> 00:00:06,000\n再见，пока。\n";
    expectOutcome(run(u"align"_s, {script, u"--progress"_s}), 0, aligned, "已匹配 2 条字幕，按文稿修改 2 条\n");
    const QString out = path(u"out.srt"_s);
    expectOutcome(
        run(u"align"_s, {script, u"-o"_s, out, u"--json"_s}), 0,
        "{\"changedCount\":2,\"matchedCount\":2,\"rows\":["
        "{\"changed\":true,\"confidence\":0.9333333333333333,\"id\":0,\"needsReview\":false,\"original\":{\"end\":3000,"
        "\"id\":1,\"start\":0,\"text\":\"嗯，你好，世界。\\nHello, world\"},\"replacement\":\"你好，世界！ Hello, "
        "World.\","
        "\"selected\":true},"
        "{\"changed\":false,\"confidence\":0,\"id\":1,\"needsReview\":true,\"original\":{\"end\":4000,\"id\":2,"
        "\"start\":3000,\"text\":\"哈哈哈！\"},\"selected\":false},"
        "{\"changed\":true,\"confidence\":1,\"id\":2,\"needsReview\":false,\"original\":{\"end\":6000,\"id\":3,"
        "\"start\":4000,\"text\":\"再见\\nПока\"},\"replacement\":\"再见，пока。\",\"selected\":true}],"
        "\"unmatchedPassages\":[\"多余的一段。\"]}\n",
        {});
    EXPECT_EQ(FileReader::readAll(out), aligned);
}

TEST_F(TextToolsTest, align_applies_every_match_when_told_to)
{
    const QByteArray script = "再见，По。";
    const QByteArray unsure = "再见，По。\n";
    EXPECT_FALSE(run(u"align"_s, {u"-"_s}, script).output.contains(unsure));
    EXPECT_TRUE(run(u"align"_s, {u"-"_s, u"--all"_s}, script).output.contains(unsure));
    EXPECT_EQ(CommandLine::run({u"align"_s, u"-"_s, u"-"_s}).status, 2);
    EXPECT_EQ(run(u"align"_s, {}).status, 2);
}

TEST_F(TextToolsTest, nothing_of_the_users_is_lost_to_a_result)
{
    const QString original = file(u"中文.srt"_s, FileReader::readAll(path(u"in.srt"_s)));
    const auto onto = CommandLine::run({u"separate"_s, original, u"--into"_s, path(u"."_s)});
    EXPECT_EQ(onto.status, 2) << "one half would take the place of the whole";
    EXPECT_EQ(FileReader::readAll(original), FileReader::readAll(path(u"in.srt"_s)));

    QDir(path(u"."_s)).mkdir(u"out"_s);
    const QString kept = file(u"out/English.srt"_s, "mine");
    EXPECT_EQ(CommandLine::shell(u"exec \"$CLI\" separate '%1' --into '%2' --json > /dev/full"_s.arg(path(u"in.srt"_s),
                                                                                                     path(u"out"_s)))
                  .status,
              1);
    EXPECT_EQ(FileReader::readAll(kept), "mine");
}

TEST_F(TextToolsTest, an_empty_value_may_follow_an_equals_sign)
{
    expectOutcome(run(u"replace"_s, {u"--find=嗯，"_s, u"--with="_s, u"--preview"_s}), 0,
                  "[{\"after\":\"你好，世界。\\nHello, world\",\"becomesEmpty\":false,\"id\":0,\"occurrences\":1}]\n",
                  {});
    expectOutcome(run(u"replace"_s, {u"--find="_s, u"--with="_s}), 1, {}, "请输入要查找的关键词。\n");
    EXPECT_EQ(run(u"separate"_s, {u"--into"_s, u""_s}).status, 2);
}
