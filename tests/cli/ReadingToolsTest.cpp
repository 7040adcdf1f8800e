#include "core/files/FileReader.h"
#include "tests/support/CommandTest.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using ReadingToolsTest = CommandTest;

} // namespace

TEST_F(ReadingToolsTest, convert_script_converts_all_but_the_names_kept)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n張國榮的頭髮\n");
    const QString out = path(u"out.srt"_s);
    expectOutcome(CommandLine::run({u"convert-script"_s, in, u"--to"_s, u"simplified"_s, u"--keep"_s,
                                    file(u"names"_s, "張國榮、鄧麗君"), u"-o"_s, out, u"--progress"_s}),
                  0, {}, "已转换 1 条字幕\n");
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:01,000 --> 00:00:02,000\n張國榮的头发\n");
    expectOutcome(CommandLine::run({u"convert-script"_s, out, u"--to"_s, u"traditional"_s, u"--json"_s}), 0,
                  "[{\"end\":2000,\"id\":1,\"start\":1000,\"text\":\"張國榮的頭髮\"}]\n", {});
    EXPECT_EQ(CommandLine::run({u"convert-script"_s, in, u"--to"_s, u"taiwan"_s}).status, 2);
    EXPECT_EQ(CommandLine::run({u"convert-script"_s, in}).status, 2);
}

TEST_F(ReadingToolsTest, dictionaries_that_lie_with_the_program_are_taken)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:00,000 --> 00:00:01,000\n漢字\n");
    ASSERT_TRUE(QDir(path(u"."_s)).mkpath(u"Resources/opencc"_s) && QDir(path(u"."_s)).mkdir(u"MacOS"_s));
    file(u"Resources/opencc/own.txt"_s, "漢字\t自带\n");
    const QByteArray dictionary = R"({"type":"text","file":"own.txt"})";
    file(u"Resources/opencc/t2s.json"_s, R"({"name":"own","segmentation":{"type":"mmseg","dict":)" + dictionary +
                                             R"(},"conversion_chain":[{"dict":)" + dictionary + "}]}");
    ASSERT_TRUE(QFile::copy(CommandLine::program(), path(u"MacOS/lintora-cli"_s)));
    expectOutcome(CommandLine::shell(path(u"MacOS/lintora-cli"_s) + u" convert-script --to simplified "_s + in), 0,
                  "1\n00:00:00,000 --> 00:00:01,000\n自带\n", {});
}

TEST_F(ReadingToolsTest, break_makes_cues_or_lines_of_long_cues)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:03,000\n我觉得这个方案不错不过预算可能不够\n");
    const QString out = path(u"out.srt"_s);
    expectOutcome(CommandLine::run({u"break"_s, in, u"-o"_s, out, u"--rate"_s, u"25"_s, u"--progress"_s}), 0, {},
                  "已断句：1 条字幕变为 2 条\n");
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:01,000 --> 00:00:02,040\n我觉得这个方案不错\n\n"
                                        "2\n00:00:02,040 --> 00:00:03,000\n不过预算可能不够\n");
    expectOutcome(CommandLine::run({u"break"_s, in, u"--inside"_s, u"--json"_s}), 0,
                  "[{\"end\":3000,\"id\":1,\"start\":1000,\"text\":\"我觉得这个方案不错\\n不过预算可能不够\"}]\n", {});
    expectOutcome(CommandLine::run({u"break"_s, in, u"--inside"_s, u"--width"_s, u"5"_s, u"--lines"_s, u"3"_s, u"-o"_s,
                                    path(u"tall.srt"_s), u"--progress"_s}),
                  0, {}, "第 1 条字幕放不进 3 行，已按宽度换行\n已断句：1 条字幕变为 1 条\n");
    expectOutcome(CommandLine::run({u"break"_s, in, u"--lines"_s, u"2"_s, u"--json"_s}), 0,
                  "[{\"end\":3000,\"id\":1,\"start\":1000,\"text\":\"我觉得这个方案不错\\n不过预算可能不够\"}]\n", {});
    expectOutcome(CommandLine::run({u"break"_s, out, u"--join"_s, u"--width"_s, u"18"_s, u"--json"_s}), 0,
                  "[{\"end\":3000,\"id\":1,\"start\":1000,\"text\":\"我觉得这个方案不错不过预算可能不够\"}]\n", {});
    expectOutcome(CommandLine::run({u"break"_s, in, u"--width"_s, u"20"_s, u"--json"_s}), 0,
                  "[{\"end\":3000,\"id\":1,\"start\":1000,\"text\":\"我觉得这个方案不错不过预算可能不够\"}]\n", {});
    for (const QStringList &wrong : {QStringList{u"--width"_s, u"0"_s},
                                     {u"--width"_s, u"x"_s},
                                     {u"--lines"_s, u"0"_s},
                                     {u"--rate"_s, u"26"_s},
                                     {u"--inside"_s, u"--join"_s}})
        EXPECT_EQ(CommandLine::run(QStringList{u"break"_s, in} + wrong).status, 2) << wrong[1].toStdString();
}

TEST_F(ReadingToolsTest, check_lists_findings_and_fixes_what_is_safe)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n你好,世界\n\n"
                                         "2\n00:00:02,040 --> 00:00:03,000\n（再见\n");
    expectOutcome(
        CommandLine::run({u"check"_s, in, u"--json"_s}), 0,
        "[{\"cue\":1,\"fixable\":true,\"limit\":67,\"message\":\"与下一条只隔 40 毫秒，宜相接或不少于 67 "
        "毫秒\",\"rule\":\"small-gap\",\"value\":40},"
        "{\"cue\":1,\"fixable\":true,\"limit\":0,\"message\":\"1 个字符的全角半角与文字不符\",\"rule\":\"mixed-"
        "width\",\"value\":1},"
        "{\"cue\":2,\"fixable\":false,\"limit\":0,\"message\":\"“（”不成对\",\"rule\":\"brackets\",\"value\":"
        "1}]\n",
        {});
    expectOutcome(CommandLine::run({u"check"_s, in, u"--strict"_s}), 1,
                  "第 1 条 small-gap：与下一条只隔 40 毫秒，宜相接或不少于 67 毫秒\n"
                  "第 1 条 mixed-width：1 个字符的全角半角与文字不符\n第 2 条 brackets：“（”不成对\n",
                  "发现 3 处问题。\n");
    const QString out = path(u"out.srt"_s);
    EXPECT_EQ(CommandLine::run({u"check"_s, in, u"-o"_s, out, u"--fix"_s, u"small-gap,mixed-width"_s}).status, 0);
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:01,000 --> 00:00:02,040\n你好，世界\n\n"
                                        "2\n00:00:02,040 --> 00:00:03,000\n（再见\n");
    expectOutcome(CommandLine::run({u"check"_s, out, u"--strict"_s, u"--limits"_s,
                                    file(u"limits.json"_s, "{\"off\":[\"brackets\"]}")}),
                  0, {}, {});
    EXPECT_EQ(CommandLine::run({u"check"_s, in, u"--fix"_s, u"nonsense"_s}).status, 2);
    EXPECT_TRUE(CommandLine::run({u"check"_s, u"--help"_s}).output.contains("\"smallestGapFrames\":2"));
}

TEST_F(ReadingToolsTest, srt_repairs_only_by_choice_and_says_what_it_did)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:01,5 --> 00:00:02,000\n\xC4\xE3\xBA\xC3\xA3\xAC\xCA\xC0\xBD\xE7\n");
    expectOutcome(CommandLine::run({u"srt"_s, in}), 1, {}, "字幕编码不支持。请先另存为 UTF-8 或 UTF-16。\n");
    expectOutcome(CommandLine::run({u"srt"_s, in, u"--repair"_s, u"--encoding"_s, u"gb18030"_s, u"--json"_s}), 0,
                  "{\"certainty\":1,\"encoding\":\"GB18030\",\"items\":[{\"end\":2000,\"id\":1,\"start\":1500,\"text\":"
                  "\"你好，世界\"}],\"repairs\":[{\"line\":1,\"what\":\"按 GB18030 读取\"},"
                  "{\"cue\":1,\"line\":2,\"what\":\"时间码写法不规范：00:00:01,5 --> 00:00:02,000\"}]}\n",
                  {});
    const QString out = path(u"out.srt"_s);
    EXPECT_EQ(CommandLine::run({u"srt"_s, in, u"--repair"_s, u"-o"_s, out}).status, 0);
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:01,500 --> 00:00:02,000\n你好，世界\n");
    EXPECT_EQ(CommandLine::run({u"srt"_s, in, u"--repair"_s, u"--encoding"_s, u"EBCDIC"_s}).status, 1);
    EXPECT_EQ(CommandLine::run({u"srt"_s, in, u"--encoding"_s, u"GB18030"_s}).status, 2);
}
