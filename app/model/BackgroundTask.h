#pragma once

#include "core/Job.h"

#include <QObject>
#include <QThreadPool>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

/// Long operations of one kind, on a worker thread, and their way back to the main thread.
///
/// An operation is a blocking function that asks its job now and then whether to go on. Its result, or the sentence
/// with which it failed, is delivered on the main thread; unless it was cancelled or replaced, or this object is gone:
/// then nothing is heard of it any more.
///
/// Lives on the main thread. The end of this object cancels the operation and waits for its end.
class BackgroundTask : public QObject
{
    Q_OBJECT

public:
    /// Says from the worker what the operation is doing now.
    using Progress = std::function<void(const QString &what)>;

    /// Takes the sentence that says why the operation failed.
    using Refused = std::function<void(const QString &sentence)>;

    /// What a new operation does to one that is under way.
    enum class Order
    {
        newestOnly,     ///< It takes its place, and begins at once.
        oneAfterAnother ///< It waits for its turn.
    };

    explicit BackgroundTask(Order order);
    ~BackgroundTask() override;

    /// Runs `operation(job, progress)`. `what` is what it is doing at first.
    template <class Operation, class Done>
    void run(const QString &what, Operation operation, Done done, const Refused &refused)
    {
        start(
            what,
            [operation = std::move(operation), done = std::move(done)](Job &job, const Progress &progress) {
                auto result = std::make_shared<decltype(operation(job, progress))>(operation(job, progress));
                return [done, result] { done(std::move(*result)); };
            },
            refused);
    }

    bool isRunning() const { return !m_runs.empty(); }

    /// What the operation under way is doing; absent while there is none.
    std::optional<QString> activity() const;

    void cancel(); ///< Nothing is heard of any operation after this.
    void wait();   ///< Waits until no operation is left on a worker. What it leads to is delivered later.
    void finish(); ///< Cancels, and waits until no operation is left on a worker.

Q_SIGNALS:
    void activityChanged();

private:
    using Delivery = std::function<void()>;
    using Work = std::function<Delivery(Job &, const Progress &)>;
    struct Run
    {
        std::shared_ptr<Job> job;
        QString activity;
    };

    void start(const QString &what, Work work, const Refused &refused);
    void deliver(const Job *job, const Delivery &delivery);
    void setActivity(const Job *job, const QString &what);
    std::deque<Run>::iterator find(const Job *job);

    Order m_order;
    std::deque<Run> m_runs; ///< The operations that are waited for, in their order.
    QThreadPool m_pool;     ///< Last, so that it ends first.
};
