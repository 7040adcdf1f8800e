#include "ai/LocalAIJob.h"

#include "ai/HelperProcess.h"
#include "ai/HelperPrograms.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/support/HelperFolder.h"

#include <QDir>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

/// The files that a run leaves in its folder: none.
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

class Helpers : public testing::Test
{
protected:
    /// Runs the helper in a scratch folder and returns what it printed, or the message of the refusal.
    QByteArray run(const QStringList &script, const LocalAIJob::Output &output = {})
    {
        helpers.script(u"whisper-cli"_s, script);
        try {
            return job.run(LocalModels::helper(u"whisper-cli"_s), {u"-x"_s}, helpers.file(u"tmp"_s), output);
        } catch (const ConversionError &error) {
            detail = error.detail();
            return error.message().toUtf8();
        }
    }

    void TearDown() override
    {
        EXPECT_EQ(helpers.running(), 0);
        EXPECT_EQ(filesIn(helpers.file(u"tmp"_s)), QStringList());
    }

    HelperFolder helpers;
    LocalAIJob job;
    QString detail;
};

constexpr auto notFinished = "本地处理未完成。请确认文件可正常播放、模型完整，并重试。";
constexpr auto tooLarge = "处理结果过大，请将素材分段后再试。";

} // namespace

TEST(LocalAIJob, cancelling_aborts_the_request_that_runs_and_no_earlier_one)
{
    LocalAIJob job;
    int first = 0;
    int second = 0;
    job.setRequest([&] { ++first; });
    job.setRequest([&] { ++second; });
    job.cancel();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_THROW(job.check(), Cancelled);
    int late = 0;
    job.setRequest([&] { ++late; });
    EXPECT_EQ(late, 1);
}

TEST(LocalAIJob, a_request_that_is_over_is_not_aborted)
{
    LocalAIJob job;
    int aborted = 0;
    job.setRequest([&] { ++aborted; });
    job.clearRequest();
    job.cancel();
    EXPECT_EQ(aborted, 0);
}

TEST_F(Helpers, a_helper_is_told_its_arguments_and_what_it_prints_comes_back)
{
    QByteArray heard;
    EXPECT_EQ(
        run({u"print 一行"_s, u"complain 无关"_s, u"print 又一行"_s}, [&](QByteArrayView news) { heard += news; }),
        "一行\n又一行\n");
    EXPECT_EQ(heard, "一行\n又一行\n");
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s), QList<QStringList>{{u"-x"_s}});
}

TEST_F(Helpers, a_helper_that_fails_or_is_killed_is_an_unfinished_run_with_its_last_words_as_detail)
{
    EXPECT_EQ(run({u"complain first"_s, u"complain 坏文件"_s, u"exit 3"_s}), notFinished);
    EXPECT_EQ(detail, u"坏文件"_s);
    EXPECT_EQ(run({u"unheard-of"_s}), notFinished);
}

TEST_F(Helpers, output_of_32_MiB_is_taken_and_one_byte_more_is_refused)
{
    EXPECT_EQ(run({u"flood output 33554432"_s}).size(), 33'554'432);
    EXPECT_EQ(run({u"flood output 33554433"_s}), tooLarge);
}

TEST_F(Helpers, a_flood_ends_the_helper_before_the_disk_is_full)
{
    // It would go on for ever.
    EXPECT_EQ(run({u"flood output 40000000"_s, u"wait"_s}), tooLarge);
    EXPECT_EQ(run({u"flood errors 300000000"_s, u"print 完"_s}), "完\n");
}

TEST_F(Helpers, what_is_missing_is_named)
{
    try {
        LocalModels::helper(u"llama-server"_s);
        FAIL();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"本地引擎不完整，请重新安装字幕助手。"_s);
        EXPECT_EQ(error.detail(), helpers.file(u"llama-server"_s));
    }
    // A folder of that name is no program, and what cannot be executed neither.
    QDir(helpers.file(u"."_s)).mkdir(u"llama-server"_s);
    EXPECT_THROW(LocalModels::helper(u"llama-server"_s), ConversionError);
    EXPECT_THROW(job.run(helpers.file(u"gone"_s), {}, helpers.file(u"tmp"_s)), PlatformError);
}

TEST_F(Helpers, those_in_the_users_own_folder_are_found_too)
{
    qunsetenv("VELMORA_SUBTITLE_HELPERS");
    const QDir own(QDir::homePath() + u"/.local/share/lintora/AI"_s);
    ASSERT_TRUE(own.mkpath(u"."_s));
    ASSERT_TRUE(QFile::link(u"/bin/sh"_s, own.filePath(u"a-helper"_s)));
    EXPECT_EQ(LocalModels::helper(u"a-helper"_s), own.filePath(u"a-helper"_s));
}

TEST_F(Helpers, a_cancelled_job_starts_nothing)
{
    job.cancel();
    EXPECT_THROW(run({u"print x"_s}), Cancelled);
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).size(), 0);
}

TEST_F(Helpers, cancelling_ends_a_helper_that_waits)
{
    std::thread canceller([&] {
        helpers.waitForProcesses(1);
        job.cancel();
    });
    EXPECT_THROW(run({u"wait"_s}), Cancelled);
    canceller.join();
}

TEST_F(Helpers, one_that_ignores_the_request_is_killed_with_its_children_two_seconds_later)
{
    QElapsedTimer sinceCancel;
    std::thread canceller([&] {
        helpers.waitForProcesses(3);
        sinceCancel.start();
        job.cancel();
    });
    EXPECT_THROW(run({u"ignore"_s, u"child"_s, u"child away"_s, u"wait"_s}), Cancelled);
    canceller.join();
    EXPECT_GE(sinceCancel.elapsed(), 1'900);
    EXPECT_LT(sinceCancel.elapsed(), 6'000); // on a loaded machine
}

TEST_F(Helpers, what_a_helper_has_started_ends_with_it)
{
    EXPECT_EQ(run({u"child"_s, u"child away"_s, u"print 完"_s}), "完\n");
    EXPECT_EQ(helpers.running(), 0);
    EXPECT_EQ(run({u"child"_s, u"exit 1"_s}), notFinished);
}

TEST_F(Helpers, cancelling_at_any_moment_of_the_start_leaves_nothing)
{
    helpers.script(u"whisper-cli"_s, {u"child"_s, u"wait"_s});
    const QString helper = LocalModels::helper(u"whisper-cli"_s);
    for (int round = 0; round < 60; ++round) {
        LocalAIJob raced;
        std::thread canceller([&] {
            for (int i = 0; i < round * 50; ++i)
                std::this_thread::yield();
            raced.cancel();
        });
        EXPECT_THROW(raced.run(helper, {}, helpers.file(u"tmp"_s)), Cancelled);
        canceller.join();
        EXPECT_EQ(helpers.running(), 0);
    }
}

TEST_F(Helpers, a_helper_does_not_end_with_the_thread_that_started_it)
{
    helpers.script(u"whisper-cli"_s, {u"wait"_s});
    HelperProcess process({.program = helpers.file(u"whisper-cli"_s),
                           .arguments = {},
                           .output = helpers.file(u"out"_s),
                           .errors = helpers.file(u"out"_s)});
    std::thread([&] { job.launch(process); }).join();
    EXPECT_TRUE(helpers.waitForProcesses(1));
    EXPECT_TRUE(process.isRunning());
    job.stop();
    EXPECT_FALSE(process.isRunning());
    EXPECT_FALSE(process.hasSucceeded());
}
