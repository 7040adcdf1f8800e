#include "tests/support/CommandLine.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/StoryDocument.h"
#include "tests/support/WavMaker.h"

#include <QFile>
#include <QScopeGuard>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

class RenderCommand : public testing::Test
{
protected:
    void SetUp() override
    {
        helpers.script(u"ffmpeg-audio"_s, {u"wav 5"_s});
        ASSERT_TRUE((Wav{.channels = {std::vector<double>(16'000)}}.write(helpers.file(u"a.wav"_s))));
    }

    void TearDown() override { EXPECT_EQ(helpers.scratchFolders(), QStringList()); }

    /// A project of 20 seconds that plays a file, and another one.
    QString projectOf(const char *first, const char *second,
                      const char *secondClip = "asset-clip ref=b offset=5s duration=5s")
    {
        const auto asset = [&](const char *id, const char *name) {
            const QUrl url = QUrl::fromLocalFile(helpers.file(QString::fromUtf8(name)));
            return tag(QByteArray("asset hasAudio=1 duration=60s id=") + id, {tag("media-rep src=" + url.toEncoded())});
        };
        const QString path = helpers.file(u"片.fcpxml"_s);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(project("20s", {tag("asset-clip ref=a offset=0s duration=5s"), tag(secondClip)},
                           {asset("a", first), asset("b", second)}));
        return path;
    }

    QByteArray contentOf(const QString &name)
    {
        QFile file(helpers.file(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    HelperFolder helpers;
};

const QByteArray missing = "找不到片段原始音视频，请先在 FCP 重新连接媒体。\n";

} // namespace

TEST_F(RenderCommand, writes_a_file_as_long_as_the_project)
{
    const QString project = projectOf("a.wav", "a.wav");
    const QString out = helpers.file(u"out.wav"_s);
    const auto outcome = CommandLine::run({u"render"_s, project, u"-o"_s, out, u"--progress"_s});
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    EXPECT_TRUE(outcome.error.startsWith("正在读取 FCP 音轨 2 / 2\n")) << outcome.error.toStdString();
    const auto wav = Wav::read(out);
    ASSERT_TRUE(wav);
    EXPECT_EQ(wav->channels[0].size(), 320'000U);
    EXPECT_EQ(CommandLine::run({u"render"_s, project}).output, contentOf(u"out.wav"_s));
}

TEST_F(RenderCommand, finds_what_is_missing_before_anything_is_rendered_and_does_without_it_when_asked)
{
    const QString project = projectOf("gone.mov", "a.wav");
    const QString out = helpers.file(u"out.wav"_s);
    const auto refused = CommandLine::run({u"render"_s, project, u"-o"_s, out, u"--details"_s});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, missing + "缺少文件：" + helpers.file(u"gone.mov"_s).toUtf8() + '\n');
    EXPECT_FALSE(QFile::exists(out));
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).size(), 0);
    EXPECT_EQ(CommandLine::run({u"render"_s, project, u"-o"_s, out, u"--without-missing"_s}).status, 0);
    EXPECT_EQ(helpers.runs(u"ffmpeg-audio"_s).last().count(u"-i"_s), 1);
    const auto plan = CommandLine::run({u"plan"_s, project, u"--without-missing"_s});
    EXPECT_TRUE(plan.output.contains("音频片段：1\n")) << plan.output.toStdString();
    EXPECT_EQ(CommandLine::run({u"render"_s, projectOf("gone.mov", "lost.mov"), u"--without-missing"_s}).error,
              "所选 FCP 内容没有可读取的音轨。\n");
}

TEST_F(RenderCommand, what_is_said_on_a_timeline_stands_at_its_times)
{
    const QString project = projectOf("a.wav", "gone.mov");
    const QString model = helpers.file(u"a.wav"_s);
    helpers.script(u"whisper-cli"_s,
                   {uR"(result {"transcription":[{"offsets":{"from":500,"to":2500},"text":" 你好"}]})"_s});
    const QStringList transcribe = {u"transcribe"_s, project, u"--model-file"_s, model};
    EXPECT_EQ(CommandLine::run(transcribe).error, missing);
    // Five seconds of silence are not even sent.
    EXPECT_EQ(CommandLine::run(transcribe + QStringList({u"--without-missing"_s})).error,
              "未识别到有效语音，请检查时间线人声。\n");
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).size(), 0);
    helpers.script(u"ffmpeg-audio"_s, {u"wav 3 2"_s});
    const auto outcome = CommandLine::run(transcribe + QStringList({u"--without-missing"_s, u"--progress"_s}));
    EXPECT_EQ(outcome.output, "1\n00:00:02,500 --> 00:00:04,500\n你好\n");
    EXPECT_TRUE(outcome.error.contains("正在识别时间线音频范围 1 / 1")) << outcome.error.toStdString();
}

TEST_F(RenderCommand, a_service_can_listen_to_a_timeline)
{
    helpers.script(u"ffmpeg-audio"_s, {u"wav 3 2"_s});
    const QByteArray formerHome = qgetenv("HOME");
    const auto restore = qScopeGuard([&] { qputenv("HOME", formerHome); });
    qputenv("HOME", helpers.file(u"home"_s).toUtf8());
    int asked = 0;
    const ScriptedServer server([&](const ScriptedServer::Request &) {
        return ++asked == 1 ? ScriptedServer::reply(200, R"({"segments":[{"start":0.5,"end":2.5,"text":" 你好 "}]})")
                            : ScriptedServer::reply(401, "");
    });
    const QStringList transcribe = {u"transcribe"_s, projectOf("a.wav", "gone.mov"),  u"--without-missing"_s,
                                    u"--api"_s,      server.url(u"/v1"_s).toString(), u"--api-model"_s,
                                    u"m"_s};
    // The service heard the sound from a second before it begins.
    EXPECT_EQ(CommandLine::run(transcribe).output, "1\n00:00:02,500 --> 00:00:04,500\n你好\n");
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).size(), 0);
    EXPECT_EQ(CommandLine::run(transcribe).error, "音频转写失败（HTTP 401）请检查音频接口密钥。原字幕已保留。\n");
}

TEST_F(RenderCommand, a_multicam_clip_is_named_and_left_out_only_when_asked)
{
    const QString project = projectOf("a.wav", "a.wav", "mc-clip name=两机 ref=b offset=5s duration=5s");
    const QStringList render = {u"render"_s, project, u"-o"_s, helpers.file(u"out.wav"_s), u"--details"_s};
    const auto refused = CommandLine::run(render);
    EXPECT_TRUE(refused.error.startsWith("多机位片段请先在 FCP 导出音频，再生成字幕。\n"))
        << refused.error.toStdString();
    EXPECT_TRUE(refused.error.contains("两机")) << refused.error.toStdString();
    const auto rest = CommandLine::run(render + QStringList{u"--skip-unreadable"_s});
    EXPECT_EQ(rest.status, 0);
    EXPECT_EQ(rest.error, "已跳过 1 段无法准确定位的片段，第一个是：两机。\n");
}
