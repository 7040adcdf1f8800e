#include "app/model/BackgroundTask.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "tests/support/Events.h"

#include <QScopeGuard>
#include <QSemaphore>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

using Order = BackgroundTask::Order;

/// What a task told, in order.
struct Told
{
    QStringList endings = {};

    /// Starts a run of that name, whose endings are told with it.
    template <class Operation>
    void run(BackgroundTask &task, const QString &name, Operation operation)
    {
        task.run(
            name, std::move(operation), [this, name](int result) { endings += name + u' ' + QString::number(result); },
            [this, name](const Failure &failure) { endings += name + u' ' + failure.text(); },
            [this, name] { endings += name + u" cancelled"_s; });
    }
};

/// An operation that does not notice that it is cancelled.
struct Deaf
{
    QSemaphore begun;
    QSemaphore goOn;

    auto returning(int result)
    {
        return [this, result](Job & /*job*/, const ProgressReport &report) {
            begun.release();
            goOn.acquire();
            report({.what = u"太晚"_s});
            return result;
        };
    }
};

int refuse(Job & /*job*/, const ProgressReport & /*report*/)
{
    throw ConversionError(u"不行。"_s, u"第 3 行。"_s);
}

auto returning(int result)
{
    return [result](Job & /*job*/, const ProgressReport & /*report*/) { return result; };
}

} // namespace

TEST(BackgroundTask, brings_progress_and_result_to_the_main_thread)
{
    BackgroundTask task(Order::newestOnly);
    QSemaphore goOn;
    QThread *worker = nullptr;
    QThread *told = nullptr;
    const Progress half{.what = u"一半"_s, .share = 0.5, .leftMS = 90'000};
    task.run(
        u"开始"_s,
        [&](Job & /*job*/, const ProgressReport &report) {
            worker = QThread::currentThread();
            report(half);
            goOn.acquire();
            return 42;
        },
        [&](int result) {
            told = QThread::currentThread();
            EXPECT_EQ(result, 42);
        },
        [](const Failure & /*failure*/) {});
    EXPECT_EQ(task.progress(), Progress{.what = u"开始"_s});
    EXPECT_TRUE(Events::waitFor([&] { return task.progress() == half; }));
    goOn.release();
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
    EXPECT_EQ(task.progress(), std::nullopt);
    EXPECT_EQ(told, task.thread());
    EXPECT_NE(worker, task.thread());
}

TEST(BackgroundTask, tells_of_the_newest_progress_alone)
{
    BackgroundTask task(Order::newestOnly);
    QSemaphore reported;
    QSemaphore goOn;
    int changes = 0;
    QObject::connect(&task, &BackgroundTask::progressChanged, [&] { ++changes; });
    Told told;
    told.run(task, u"一"_s, [&](Job & /*job*/, const ProgressReport &report) {
        for (int percent = 1; percent <= 100; ++percent)
            report({.what = u"一"_s, .share = percent / 100.0});
        reported.release();
        goOn.acquire();
        return 1;
    });
    reported.acquire();
    Events::handle();
    EXPECT_EQ(task.progress(), (Progress{.what = u"一"_s, .share = 1.0}));
    EXPECT_EQ(changes, 2) << "the beginning, and what was newest when it was looked at";
    goOn.release();
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
}

TEST(BackgroundTask, ends_every_run_once_and_says_how_in_every_order)
{
    for (const Order order : {Order::newestOnly, Order::newestAfterTheOld, Order::oneAfterAnother}) {
        BackgroundTask task(order);
        Told told;
        const auto endings = [&] {
            EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
            task.wait();
            Events::handle();
            return std::exchange(told.endings, {});
        };
        told.run(task, u"一"_s, returning(1));
        EXPECT_EQ(endings(), QStringList{u"一 1"_s});
        told.run(task, u"二"_s, refuse);
        EXPECT_EQ(endings(), QStringList{u"二 不行。\n第 3 行。"_s});
        told.run(task, u"三"_s, [](Job & /*job*/, const ProgressReport & /*report*/) -> int { throw Cancelled(); });
        EXPECT_EQ(endings(), QStringList{u"三 cancelled"_s}) << "also one that ends so by itself";

        Deaf deaf;
        told.run(task, u"四"_s, deaf.returning(4));
        deaf.begun.acquire();
        task.cancel();
        EXPECT_FALSE(task.isRunning());
        EXPECT_EQ(told.endings, QStringList{u"四 cancelled"_s}) << "before its worker notices";
        deaf.goOn.release();
        EXPECT_EQ(endings(), QStringList{u"四 cancelled"_s}) << "its result is dropped";
        told.run(task, u"五"_s, returning(5));
        EXPECT_EQ(endings(), QStringList{u"五 5"_s});
    }
}

TEST(BackgroundTask, a_successor_takes_the_place_of_a_run_at_once_or_when_that_has_left_its_worker)
{
    for (const bool waits : {false, true}) {
        BackgroundTask task(waits ? Order::newestAfterTheOld : Order::newestOnly);
        Told told;
        Deaf deaf;
        std::atomic<bool> oldOneIsThere = true;
        told.run(task, u"旧"_s, [&](Job &job, const ProgressReport &report) {
            const int result = deaf.returning(1)(job, report);
            oldOneIsThere = false;
            return result;
        });
        deaf.begun.acquire();
        if (waits)
            deaf.goOn.release();
        told.run(task, u"新"_s,
                 [&](Job & /*job*/, const ProgressReport & /*report*/) { return oldOneIsThere ? 1 : 0; });
        EXPECT_EQ(task.progress(), Progress{.what = u"新"_s});
        EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
        EXPECT_EQ(told.endings, (QStringList{u"旧 cancelled"_s, waits ? u"新 0"_s : u"新 1"_s}));
        deaf.goOn.release();
        task.wait();
    }
}

TEST(BackgroundTask, runs_one_after_another_where_each_counts)
{
    BackgroundTask task(Order::oneAfterAnother);
    Told told;
    Deaf deaf;
    told.run(task, u"一"_s, deaf.returning(1));
    told.run(task, u"二"_s, refuse);
    told.run(task, u"三"_s, returning(3));
    EXPECT_EQ(task.progress(), Progress{.what = u"一"_s});
    deaf.goOn.release();
    EXPECT_TRUE(Events::waitFor([&] { return !task.isRunning(); }));
    EXPECT_EQ(told.endings, (QStringList{u"一 1"_s, u"二 不行。\n第 3 行。"_s, u"三 3"_s}));
}

TEST(BackgroundTask, stops_the_operations_when_it_goes_and_tells_their_end)
{
    Told told;
    std::atomic<bool> ended = false;
    QSemaphore begun;
    {
        BackgroundTask task(Order::oneAfterAnother);
        told.run(task, u"无尽"_s, [&](Job &job, const ProgressReport & /*report*/) -> int {
            const auto note = qScopeGuard([&] { ended = true; });
            begun.release();
            for (;;)
                job.check();
        });
        told.run(task, u"下一个"_s, returning(2));
        begun.acquire();
    }
    EXPECT_TRUE(ended);
    EXPECT_EQ(told.endings, (QStringList{u"无尽 cancelled"_s, u"下一个 cancelled"_s}));
}

TEST(BackgroundTask, leaves_a_read_alone_that_does_not_end)
{
    static_assert(BackgroundTask::patience < std::chrono::seconds(2));
    Told told;
    const auto deaf = std::make_shared<Deaf>();
    {
        BackgroundTask task(Order::oneAfterAnother);
        told.run(task, u"管道"_s, [deaf](Job &job, const ProgressReport &report) {
            const auto note = qScopeGuard([deaf] { deaf->begun.release(); });
            return deaf->returning(1)(job, report);
        });
        deaf->begun.acquire();
        task.cancel();
        told.run(task, u"下一个"_s, returning(2));
        EXPECT_TRUE(Events::waitFor([&] { return told.endings.contains(u"下一个 2"_s); })) << "it holds up no other";
        task.finish(QDeadlineTimer(1));
    }
    // What it says now finds nobody.
    deaf->goOn.release();
    deaf->begun.acquire();
    Events::handle();
    EXPECT_EQ(told.endings, (QStringList{u"管道 cancelled"_s, u"下一个 2"_s}));
}

TEST(BackgroundTask, waits_for_a_write_however_long_it_takes)
{
    Told told;
    Deaf deaf;
    std::atomic<bool> isWritten = false;
    BackgroundTask task(Order::oneAfterAnother, BackgroundTask::Effect::writes);
    told.run(task, u"文件"_s, [&](Job &job, const ProgressReport & /*report*/) {
        deaf.begun.release();
        while (!job.isCancelled())
            QThread::yieldCurrentThread();
        // Only now is the deadline over, and somebody waits.
        QThread::yieldCurrentThread();
        isWritten = true;
        return 1;
    });
    deaf.begun.acquire();
    task.finish(QDeadlineTimer(0));
    EXPECT_TRUE(isWritten);
}
