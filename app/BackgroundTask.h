#pragma once

#include "ai/LocalAIJob.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>

/// One long operation at a time, on a worker thread, and its way back to the main thread.
///
/// The operation is a blocking function that asks its job now and then whether to go on. Its result, or the sentence
/// with which it failed, is delivered on the main thread; unless it was cancelled, replaced by a newer operation, or
/// this object is gone: then nothing is heard of it any more.
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

    /// What happens to operations that were replaced.
    enum class Order
    {
        newestAtOnce,   ///< The newest begins at once; those before it end when they notice.
        oneAfterAnother ///< All run to their end in order: each builds on what the one before has done.
    };

    explicit BackgroundTask(Order order = Order::newestAtOnce);
    ~BackgroundTask() override;

    /// Runs `operation(job, progress)` in place of one under way. `what` is what it is doing at first.
    template <class Operation, class Done>
    void run(const QString &what, Operation operation, Done done, Refused refused)
    {
        start(
            what,
            [operation = std::move(operation), done = std::move(done)](LocalAIJob &job, const Progress &progress) {
                auto result = std::make_shared<decltype(operation(job, progress))>(operation(job, progress));
                return [done, result] { done(std::move(*result)); };
            },
            std::move(refused));
    }

    bool isRunning() const { return m_run != nullptr; }
    const std::optional<QString> &activity() const { return m_activity; } ///< What it is doing; absent while idle.

    void cancel(); ///< Nothing is heard of the operation after this.
    void wait();   ///< Waits until no operation is left on a worker. What it leads to is delivered later.
    void finish(); ///< Cancels, and waits until no operation is left on a worker.

Q_SIGNALS:
    void activityChanged();

private:
    using Delivery = std::function<void()>;
    using Work = std::function<Delivery(LocalAIJob &, const Progress &)>;
    using Run = std::shared_ptr<LocalAIJob>;

    void start(const QString &what, Work work, Refused refused);
    void deliver(const Run &run, const Delivery &delivery);
    void setActivity(std::optional<QString> what);

    Run m_run; ///< The operation that is waited for; null while there is none.
    std::optional<QString> m_activity;
    QThreadPool m_pool; ///< Last, so that it ends first.
};
