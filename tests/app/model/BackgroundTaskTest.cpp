#include "app/model/BackgroundTask.h"

#include "core/ConversionError.h"
#include "tests/support/Events.h"

#include <QSemaphore>
#include <QThread>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Progress = BackgroundTask::Progress;

/// What a task delivered.
struct Delivered
{
    QList<int> results = {};
    QStringList refusals = {};

    auto done()
    {
        return [this](int result) { results += result; };
    }
    auto refused()
    {
        return [this](const QString &sentence) { refusals += sentence; };
    }
};

} // namespace

TEST(BackgroundTask, brings_progress_and_result_to_the_main_thread)
{
    BackgroundTask task(BackgroundTask::Order::newestOnly);
    Delivered delivered;
    QSemaphore goOn;
    QThread *worker = nullptr;
    task.run(
        u"开始"_s,
        [&](Job & /*job*/, const Progress &progress) {
            worker = QThread::currentThread();
            progress(u"一半"_s);
            goOn.acquire();
            return 42;
        },
        [&](int result) {
            EXPECT_EQ(QThread::currentThread(), task.thread());
            delivered.results += result;
        },
        delivered.refused());
    EXPECT_EQ(task.activity(), u"开始"_s);
    EXPECT_TRUE(Events::waitFor([&] { return task.activity() == u"一半"_s; }));
    goOn.release();
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
    EXPECT_EQ(delivered.results, QList<int>{42});
    EXPECT_EQ(task.activity(), std::nullopt);
    EXPECT_NE(worker, task.thread());
}

TEST(BackgroundTask, tells_why_an_operation_failed)
{
    BackgroundTask task(BackgroundTask::Order::newestOnly);
    Delivered delivered;
    task.run(
        u"开始"_s, [](Job &, const Progress &) -> int { throw ConversionError(u"不行。"_s); }, delivered.done(),
        delivered.refused());
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
    EXPECT_EQ(delivered.refusals, QStringList{u"不行。"_s});
}

TEST(BackgroundTask, hears_nothing_more_of_what_was_cancelled_or_replaced_however_late_it_comes)
{
    BackgroundTask task(BackgroundTask::Order::newestOnly);
    Delivered delivered;
    QSemaphore goOn;
    const auto slow = [&](Job & /*job*/, const Progress &progress) {
        goOn.acquire(); // Does not notice that it was cancelled.
        progress(u"太晚"_s);
        return 1;
    };
    task.run(u"慢"_s, slow, delivered.done(), delivered.refused());
    task.run(
        u"快"_s, [](Job &, const Progress &) { return 2; }, delivered.done(), delivered.refused());
    EXPECT_TRUE(Events::waitFor([&] { return delivered.results == QList<int>{2}; }));

    task.run(u"慢"_s, slow, delivered.done(), delivered.refused());
    task.cancel();
    EXPECT_FALSE(task.isRunning());
    goOn.release(2);
    task.wait();
    Events::handle();
    EXPECT_EQ(delivered.results, QList<int>{2});
    EXPECT_EQ(delivered.refusals, QStringList());
    EXPECT_EQ(task.activity(), std::nullopt);
}

TEST(BackgroundTask, runs_one_after_another_where_each_counts)
{
    BackgroundTask task(BackgroundTask::Order::oneAfterAnother);
    Delivered delivered;
    QSemaphore goOn;
    task.run(
        u"一"_s,
        [&](Job &, const Progress &) {
            goOn.acquire();
            return 1;
        },
        delivered.done(), delivered.refused());
    task.run(
        u"二"_s, [](Job &, const Progress &) -> int { throw ConversionError(u"不行。"_s); }, delivered.done(),
        delivered.refused());
    task.run(
        u"三"_s, [](Job &, const Progress &) { return 3; }, delivered.done(), delivered.refused());
    EXPECT_EQ(task.activity(), u"一"_s);
    goOn.release();
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
    EXPECT_EQ(delivered.results, (QList<int>{1, 3}));
    EXPECT_EQ(delivered.refusals, QStringList{u"不行。"_s});
}

TEST(BackgroundTask, stops_the_operation_when_it_goes)
{
    Delivered delivered;
    std::atomic<bool> ended = false;
    QSemaphore started;
    {
        BackgroundTask task(BackgroundTask::Order::newestOnly);
        task.run(
            u"无尽"_s,
            [&](Job &job, const Progress & /*progress*/) -> int {
                const auto note = qScopeGuard([&] { ended = true; });
                started.release();
                for (;;)
                    job.check();
            },
            delivered.done(), delivered.refused());
        started.acquire();
    }
    EXPECT_TRUE(ended);
    Events::handle();
    EXPECT_EQ(delivered.results, QList<int>());
    EXPECT_EQ(delivered.refusals, QStringList());
}
