#pragma once

#include "core/Failure.h"
#include "core/Job.h"
#include "core/Progress.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Long operations of one kind, on a worker thread, and their way back to the main thread.
///
/// An operation is a blocking function that asks its job now and then whether to go on, and throws what it refuses.
/// Every run ends exactly once, on the main thread, and says how:
///
/// | done      | with the value that the operation returned |
/// | refused   | with what the error says that it threw |
/// | cancelled | at once when it is cancelled or replaced, and when this object goes; its value is dropped |
///
/// What was cancelled may need a moment yet on its worker. finish() and the destructor wait for it: for what writes to
/// its end, for what only reads no longer than `patience`. A pipe or a network may keep a read waiting for ever; such a
/// one is left alone, holds up none that follow, and whatever it comes to is dropped.
///
/// Lives on the main thread.
class BackgroundTask : public QObject
{
    Q_OBJECT

public:
    using Refused = std::function<void(const Failure &failure)>;

    /// What a new run does to one that is under way.
    enum class Order
    {
        newestOnly,        ///< It takes its place, and begins at once.
        newestAfterTheOld, ///< It takes its place, and begins when the other one has left its worker.
        oneAfterAnother    ///< It waits for its turn; a read does not wait for one that was cancelled.
    };

    /// What operations do to files.
    enum class Effect
    {
        reads,
        writes
    };

    static constexpr std::chrono::milliseconds patience{1'500};

    explicit BackgroundTask(Order order, Effect effect = Effect::reads);
    ~BackgroundTask() override;

    /// Runs `operation(job, report)`. `first` is what it is doing until it reports.
    ///
    /// `JobType` is what the operation is cancelled by: Job, or what is made of it. `cancelled` starts no other run.
    template <class JobType = Job, class Operation, class Done>
    void run(const QString &first, Operation operation, Done done, const Refused &refused,
             const std::function<void()> &cancelled = {})
    {
        const auto job = std::make_shared<JobType>();
        start({.job = job, .progress = {.what = first}, .refused = refused, .cancelled = cancelled},
              [job, operation = std::move(operation), done = std::move(done)](const ProgressReport &report) {
                  auto result = std::make_shared<decltype(operation(*job, report))>(operation(*job, report));
                  return [done, result] { done(std::move(*result)); };
              });
    }

    bool isRunning() const { return !m_runs.empty(); }

    /// How far the run under way is; absent while there is none.
    std::optional<Progress> progress() const;

    void cancel(); ///< Cancels every run, those that wait for their turn too.
    void wait();   ///< Waits until no operation is left on a worker. What they lead to is told later.

    /// Cancels, and waits until no operation is left on a worker, or, where it only reads, `deadline` is over.
    void finish(QDeadlineTimer deadline = QDeadlineTimer(patience));

Q_SIGNALS:
    void progressChanged();

private:
    class Line;
    using Ending = std::function<void()>;
    using Work = std::function<Ending(const ProgressReport &)>;
    struct Run
    {
        std::shared_ptr<Job> job;
        Progress progress;
        Refused refused;
        std::function<void()> cancelled; ///< May be empty.
    };

    void start(Run run, Work work);
    ProgressReport reportOf(const std::shared_ptr<Job> &job);
    void end(const Job *job, const Ending &ending);
    void setProgress(const Job *job, const Progress &progress);
    void cancelRuns();
    void leaveCancelledReads();
    void waitUntil(QDeadlineTimer deadline);
    std::deque<Run>::iterator find(const Job *job);

    Order m_order;
    std::deque<Run> m_runs; ///< Those whose end is not told, in their order.
    Effect m_effect;
    bool m_isGivenUp = false;                         ///< Whether a read was waited for in vain.
    std::shared_ptr<Line> m_line;                     ///< By which workers reach this object.
    std::unique_ptr<QThreadPool> m_pool;              ///< Never null.
    std::vector<std::unique_ptr<QThreadPool>> m_left; ///< Where cancelled reads may still be.
};
