#include "tests/support/CommandLine.h"
#include "tests/support/HelperFolder.h"

#include <QFile>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

bool waitUntil(const std::function<bool()> &condition)
{
    for (int round = 0; round < 2'000 && !condition(); ++round)
        QThread::msleep(10);
    return condition();
}

class EngineCommands : public testing::Test
{
protected:
    void SetUp() override
    {
        write(u"model"_s, "model");
        write(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n你好\n\n2\n00:00:03,000 --> 00:00:04,000\n再见\n\n");
        helpers.script(u"ffmpeg-audio"_s, {u"wav 5"_s});
        helpers.script(u"whisper-cli"_s,
                       {uR"(result {"transcription":[{"offsets":{"from":0,"to":2500},"text":" 你好"}]})"_s});
        helpers.script(u"llama-server"_s, {u"health 503 200"_s, u"completion echo"_s, u"serve"_s});
    }

    void TearDown() override
    {
        EXPECT_EQ(helpers.running(), 0);
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(helpers.file(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray read(const QString &name)
    {
        QFile file(helpers.file(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Runs a command with the model; "in.srt" and the like are files of the helpers' folder.
    CommandLine::Outcome run(QStringList arguments)
    {
        for (QString &argument : arguments) {
            if (argument.endsWith(u".srt") || argument.endsWith(u".mov"))
                argument = helpers.file(argument);
        }
        return CommandLine::run(arguments + QStringList({u"--model-file"_s, helpers.file(u"model"_s)}));
    }

    /// Starts a transcription whose recogniser waits with a stubborn child, and returns when all of it runs.
    void startStubborn(QProcess &process)
    {
        helpers.script(u"whisper-cli"_s, {u"ignore"_s, u"child"_s, u"child away"_s, u"wait"_s});
        process.start(CommandLine::program(), {u"transcribe"_s, u"a.mov"_s, u"-o"_s, helpers.file(u"out.srt"_s),
                                               u"--model-file"_s, helpers.file(u"model"_s)});
        ASSERT_TRUE(helpers.waitForProcesses(4));
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(EngineCommands, transcribe_writes_the_cues)
{
    const auto outcome =
        run({u"transcribe"_s, u"访谈.mov"_s, u"--language"_s, u"zh"_s, u"-o"_s, u"out.srt"_s, u"--json"_s});
    EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
    EXPECT_EQ(read(u"out.srt"_s), "1\n00:00:00,000 --> 00:00:02,500\n你好\n");
    EXPECT_EQ(outcome.output, R"([{"end":2500,"id":1,"start":0,"text":"你好"}])"
                              "\n");
    EXPECT_EQ(outcome.error, "");
    EXPECT_TRUE(helpers.runs(u"whisper-cli"_s).first().contains(u"zh"_s));
}

TEST_F(EngineCommands, translate_and_proofread_answer_cue_by_cue)
{
    const auto translated = run({u"translate"_s, u"in.srt"_s, u"--to"_s, u"en"_s, u"--progress"_s});
    EXPECT_EQ(translated.output,
              "1\n00:00:01,000 --> 00:00:02,000\n译你好\n\n2\n00:00:03,000 --> 00:00:04,000\n译再见\n");
    EXPECT_TRUE(translated.error.startsWith("正在载入本地翻译模型…")) << translated.error.toStdString();
    EXPECT_TRUE(translated.error.contains("正在翻译 · 2 / 2 条 · 100%")) << translated.error.toStdString();
    EXPECT_TRUE(helpers.requests(u"llama-server"_s).last().contains("from 中文 to English"));
    run({u"translate"_s, u"in.srt"_s, u"--to"_s, u"zh"_s});
    EXPECT_TRUE(helpers.requests(u"llama-server"_s).last().contains("from English to 简体中文"));
    EXPECT_EQ(run({u"proofread"_s, u"in.srt"_s, u"--reference"_s, u"in.srt"_s}).status, 0);
    EXPECT_TRUE(helpers.requests(u"llama-server"_s).last().contains("reference"));
}

TEST_F(EngineCommands, refusals_say_what_is_missing_and_wrong_uses_what_is_wrong)
{
    const auto refusal = [](const QStringList &arguments) { return CommandLine::run(arguments); };
    EXPECT_EQ(refusal({u"transcribe"_s, u"a.mov"_s}).error, "请先下载所选语音模型。\n");
    EXPECT_EQ(refusal({u"translate"_s, helpers.file(u"in.srt"_s), u"--to"_s, u"en"_s}).error, "请先下载翻译模型。\n");
    EXPECT_EQ(refusal({u"proofread"_s, helpers.file(u"in.srt"_s)}).status, 1);
    EXPECT_EQ(run({u"translate"_s, u"in.srt"_s}).status, 2);
    EXPECT_EQ(run({u"translate"_s, u"in.srt"_s, u"--to"_s, u"fr"_s}).status, 2);
    EXPECT_EQ(run({u"transcribe"_s, u"a.mov"_s, u"--language"_s, u"fr"_s}).status, 2);
    EXPECT_EQ(run({u"transcribe"_s, u"a.mov"_s, u"--model"_s, u"base"_s}).status, 2);
    EXPECT_EQ(refusal({u"transcribe"_s, u"a.mov"_s, u"--model"_s, u"unheard-of"_s}).status, 2);
    QFile::remove(helpers.file(u"whisper-cli"_s));
    EXPECT_EQ(run({u"transcribe"_s, u"a.mov"_s}).error, "本地引擎不完整，请重新安装字幕助手。\n");
}

TEST_F(EngineCommands, an_interrupt_ends_everything_and_leaves_the_output_as_it_was)
{
    write(u"out.srt"_s, "before");
    QProcess process;
    startStubborn(process);
    kill(pid_t(process.processId()), SIGINT);
    EXPECT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(process.readAllStandardError(), "");
    EXPECT_EQ(read(u"out.srt"_s), "before");
}

TEST_F(EngineCommands, a_program_that_is_killed_takes_its_helpers_and_their_children_along)
{
    QProcess process;
    startStubborn(process);
    process.kill();
    process.waitForFinished();
    EXPECT_TRUE(waitUntil([&] { return helpers.running() == 0; }));
    // What such an end leaves is removed a day later, at the next start.
    EXPECT_EQ(helpers.scratchFolders().size(), 1);
    QProcess::execute(u"rm"_s, {u"-rf"_s, helpers.file(u"tmp"_s)});
}
