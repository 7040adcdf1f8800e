#include "tests/support/CommandLine.h"
#include "tests/support/StoryDocument.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

QByteArray documentOf(const QByteArray &source)
{
    const Tag asset = tag("asset id=a duration=60s hasAudio=1", {tag("media-rep src=" + source)});
    return project("20s", {tag("asset-clip ref=a offset=5s start=3s duration=10s", {tag("adjust-volume amount=-6dB")})},
                   {asset});
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

TEST(lintora_cli_plan, prints_the_plan_as_json)
{
    const auto outcome = CommandLine::run({u"plan"_s, u"--json"_s, u"-"_s}, documentOf("file:///m/a.mov"));
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    EXPECT_TRUE(outcome.output.startsWith(
        R"({"duration":20,"hasAudioEffects":false,"name":"Film","segments":[{"duration":10,"fileStart":3,)"
        R"("gain":0.5011872336272722,"offset":5,"url":"file:///m/a.mov"}],"settings":{"bottomPercent":10,)"))
        << outcome.output.toStdString();
    EXPECT_TRUE(outcome.output.endsWith("\"skippedRetimedAudio\":[]}\n"));
}

TEST(lintora_cli_plan, prints_a_summary_for_people)
{
    const auto outcome = CommandLine::run({u"plan"_s, u"-"_s}, documentOf("file:///m/a.mov"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "名称：Film\n时长：20.000 秒\n帧率：25\n画面：1920 × 1080\n音频片段：1\n"
                              "       5.000      10.000 秒  a.mov 自 3.000 秒  -6.0 dB\n");
}

TEST(lintora_cli_plan, resolves_files_beside_the_project_and_in_its_bundle)
{
    const QTemporaryDir folder;
    const QString bundle = folder.filePath(u"片.fcpxmld"_s);
    ASSERT_TRUE(QDir().mkpath(bundle));
    write(folder.filePath(u"片.fcpxml"_s), documentOf("media/a.mov"));
    write(bundle + u"/Info.fcpxml"_s, documentOf("a.mov"));
    const auto file = CommandLine::run({u"plan"_s, u"--json"_s, folder.filePath(u"片.fcpxml"_s)});
    EXPECT_TRUE(file.output.contains(QUrl::fromLocalFile(folder.filePath(u"media/a.mov"_s)).toEncoded()))
        << file.error.toStdString();
    const auto inside = CommandLine::run({u"plan"_s, u"--json"_s, bundle});
    EXPECT_TRUE(inside.output.contains(QUrl::fromLocalFile(bundle + u"/a.mov"_s).toEncoded()))
        << inside.error.toStdString();
}

TEST(lintora_cli_plan, refuses_in_the_words_of_the_plan)
{
    const auto lost = CommandLine::run({u"plan"_s, u"-"_s}, documentOf("a.mov"));
    EXPECT_EQ(lost.status, 1);
    EXPECT_EQ(lost.error, "找不到片段原始音视频，请先在 FCP 重新连接媒体。\n");
    EXPECT_EQ(lost.output, "");
    const auto detailed = CommandLine::run({u"plan"_s, u"--details"_s, u"-"_s}, documentOf("a.mov"));
    EXPECT_TRUE(detailed.error.endsWith("\n见第 3 行的 asset-clip。 时间线 00:00:05.000。\n"))
        << detailed.error.toStdString();
    EXPECT_EQ(CommandLine::run({u"plan"_s, u"--skip-unreadable"_s, u"-"_s}, documentOf("a.mov")).error,
              "所选 FCP 内容没有可读取的音轨。\n");
    const auto entity = CommandLine::run({u"plan"_s, u"-"_s}, "<!DOCTYPE fcpxml [<!ENTITY a 'b'>]><fcpxml/>");
    EXPECT_EQ(entity.error, "FCP 数据过大或含不支持的 XML 实体。\n");
    EXPECT_EQ(CommandLine::run({u"plan"_s}).status, 2);
}

} // namespace
