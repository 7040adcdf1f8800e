#include "ai/text/Translation.h"

#include "ai/LocalAIJob.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "tests/support/HelperFolder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;
using SubtitleAI::TextTask;
using SubtitleAI::TextWork;

namespace {

/// Three cues that need two requests.
QList<Subtitle> threeCues()
{
    return {{.id = 1, .start = 0, .end = 900, .text = QString(600, u'一')},
            {.id = 2, .start = 1'000, .end = 1'900, .text = QString(600, u'二')},
            {.id = 3, .start = 2'000, .end = 2'900, .text = u"三"_s}};
}

class LocalTranslation : public testing::Test
{
protected:
    void SetUp() override
    {
        QFile file(helpers.file(u"model.gguf"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("model");
    }

    /// The texts that come back, or the message of the refusal.
    QString translate(const QStringList &script, const QList<Subtitle> &rows = threeCues(), const TextTask &task = {})
    {
        helpers.script(u"llama-server"_s, script);
        try {
            QStringList texts;
            const auto result = SubtitleAI::translate(rows, task, EngineModel::own(helpers.file(u"model.gguf"_s)),
                                                      helpers.file(u"ledger"_s), job,
                                                      [&](const Progress &news) { progress.append(news); });
            result.forget();
            for (const Subtitle &cue : result.cues)
                texts.append(cue.text.left(2));
            return texts.join(u' ');
        } catch (const ConversionError &error) {
            return error.message();
        }
    }

    void TearDown() override
    {
        EXPECT_EQ(helpers.running(), 0);
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    qsizetype requests() const { return helpers.requests(u"llama-server"_s).size(); }

    HelperFolder helpers;
    LocalAIJob job;
    QList<Progress> progress;
};

const QString notReady = u"本地翻译引擎尚未就绪。"_s;
const QString unreadable = u"翻译结果读取失败，原字幕已保留。"_s;
const QStringList server = {u"health 503 200"_s, u"completion echo"_s, u"serve"_s};

} // namespace

TEST_F(LocalTranslation, cues_come_back_with_new_texts_from_a_server_of_this_machine_alone)
{
    EXPECT_EQ(translate(server), u"译一 译二 译三"_s);
    EXPECT_EQ(requests(), 2);
    const auto runs = helpers.runs(u"llama-server"_s);
    ASSERT_EQ(runs.size(), 1);
    QStringList arguments = runs.first();
    EXPECT_EQ(arguments.takeAt(5).toInt() > 1'024, true); // the port
    EXPECT_EQ(arguments.takeAt(6).size(), 36);            // the key
    EXPECT_EQ(
        arguments.join(u' '),
        u"-m %1 --host 127.0.0.1 --port --api-key -c 8192 -ngl 99 -t 4 --parallel 1 --no-webui --log-disable"_s.arg(
            helpers.file(u"model.gguf"_s)));
    EXPECT_EQ(progress.first().what, u"正在载入本地翻译模型…"_s);
    EXPECT_EQ(progress[1], (Progress{.what = u"正在翻译 · 0 / 3 条"_s, .share = 0.0}));
    EXPECT_EQ(progress.last().what, u"正在翻译 · 3 / 3 条"_s);
    EXPECT_EQ(progress.last().share, 1.0);
}

TEST_F(LocalTranslation, proofreading_sends_the_originals_along)
{
    QList<Subtitle> references = threeCues();
    references[2].text = u"原文"_s;
    EXPECT_EQ(translate(server, threeCues(), {.work = TextWork::proofreading, .references = references}),
              u"译一 译二 译三"_s);
    EXPECT_TRUE(helpers.requests(u"llama-server"_s).last().contains("\\\"reference\\\":\\\"原文\\\""));
    references.removeLast();
    EXPECT_EQ(translate(server, threeCues(), {.work = TextWork::proofreading, .references = references}),
              u"原文与译文时间不对应，请先匹配字幕轨道。"_s);
}

TEST_F(LocalTranslation, what_cannot_be_asked_starts_no_server)
{
    EXPECT_EQ(translate(server, {}), u"请先载入字幕或生成字幕。"_s);
    QList<Subtitle> rows = threeCues();
    rows[1].text = QString(1'501, u'x');
    EXPECT_EQ(translate(server, rows), u"单条字幕超过 1500 字，请分句后翻译。"_s);
    QFile::remove(helpers.file(u"model.gguf"_s));
    EXPECT_EQ(translate(server), u"无法读取模型文件。"_s);
    EXPECT_EQ(helpers.runs(u"llama-server"_s).size(), 0);
}

TEST_F(LocalTranslation, a_server_that_ends_while_it_loads_is_noticed_at_once)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(translate({u"exit 1"_s}), u"本地翻译引擎启动失败，请检查模型后重试。"_s);
    EXPECT_LT(clock.elapsed(), 20'000);
}

TEST_F(LocalTranslation, a_health_check_that_hangs_is_given_up_and_asked_again)
{
    EXPECT_EQ(translate({u"health hang 500 200"_s, u"completion echo"_s, u"serve"_s}), u"译一 译二 译三"_s);
}

TEST_F(LocalTranslation, answers_that_are_no_answers_are_refused)
{
    const auto answering = [&](const QString &turn) {
        return translate({u"health 200"_s, u"completion "_s + turn, u"serve"_s});
    };
    EXPECT_EQ(answering(u"answer Sure! {}"_s), unreadable);
    EXPECT_EQ(answering(uR"(answer {"translations":[{"id":0,"text":"x"}]})"_s),
              u"翻译条数不匹配，原字幕已保留，请重试。"_s);
    EXPECT_EQ(answering(u"status 500"_s), notReady);
    EXPECT_EQ(answering(u"crash"_s), notReady);
}

TEST_F(LocalTranslation, what_was_answered_before_a_failure_is_not_asked_again_until_a_run_has_ended_whole)
{
    EXPECT_EQ(translate({u"health 200"_s, u"completion echo"_s, u"completion crash"_s, u"serve"_s}), notReady);
    EXPECT_EQ(requests(), 2);
    EXPECT_EQ(translate(server), u"译一 译二 译三"_s);
    EXPECT_EQ(requests(), 3);
    EXPECT_EQ(progress.last().what, u"正在翻译 · 3 / 3 条"_s);
    EXPECT_EQ(translate(server), u"译一 译二 译三"_s);
    EXPECT_EQ(requests(), 5);
    // Other work, other answers.
    EXPECT_EQ(translate({u"health 200"_s, u"completion echo"_s, u"completion crash"_s, u"serve"_s}), notReady);
    EXPECT_EQ(translate(server, threeCues(), {.direction = SubtitleAI::Direction::englishToChinese}),
              u"译一 译二 译三"_s);
    EXPECT_EQ(requests(), 9);
}

TEST_F(LocalTranslation, cancelling_during_an_answer_ends_at_once_and_keeps_what_was_answered)
{
    QElapsedTimer sinceCancel;
    std::thread canceller([&] {
        while (requests() < 2)
            QThread::msleep(5);
        sinceCancel.start();
        job.cancel();
    });
    EXPECT_THROW(translate({u"health 200"_s, u"completion echo"_s, u"completion hang"_s, u"serve"_s}), Cancelled);
    canceller.join();
    EXPECT_LT(sinceCancel.elapsed(), 1'500); // on a loaded machine, and less than the grace of one that ignores it
    EXPECT_EQ(QDir(helpers.file(u"ledger"_s)).entryList(QDir::Files).size(), 1);
}

TEST_F(LocalTranslation, a_server_that_ignores_the_request_to_end_is_killed)
{
    EXPECT_EQ(translate(QStringList({u"ignore"_s, u"child"_s}) + server), u"译一 译二 译三"_s);
}
