#include "app/model/BackgroundTask.h"

#include "core/Cancelled.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

/// The newest progress of a run on its way to the main thread: however fast it comes, one event carries it.
class Newest
{
public:
    /// Whether nothing was on its way.
    bool put(const Progress &progress)
    {
        const std::lock_guard lock(m_mutex);
        return !std::exchange(m_progress, progress).has_value();
    }

    Progress take()
    {
        const std::lock_guard lock(m_mutex);
        return *std::exchange(m_progress, std::nullopt);
    }

private:
    std::mutex m_mutex;
    std::optional<Progress> m_progress;
};

std::unique_ptr<QThreadPool> makePool(BackgroundTask::Order order)
{
    // An operation that was cancelled may need a moment to notice; the one in its place does not wait for it.
    constexpr int threads = 4;
    auto pool = std::make_unique<QThreadPool>();
    pool->setMaxThreadCount(order == BackgroundTask::Order::newestOnly ? threads : 1);
    return pool;
}

/// Leaves a pool to its worker, which keeps what it needs: the destructor would wait for it, perhaps for ever. What can
/// be reached is no leak.
void giveUp(std::unique_ptr<QThreadPool> pool)
{
    static auto *const givenUp = new std::vector<std::unique_ptr<QThreadPool>>;
    givenUp->push_back(std::move(pool));
}

} // namespace

/// What workers say arrives as long as the task is there.
class BackgroundTask::Line
{
public:
    explicit Line(BackgroundTask &task)
        : m_task(&task)
    {}

    void post(std::function<void(BackgroundTask &)> call)
    {
        const std::lock_guard lock(m_mutex);
        if (m_task) {
            QMetaObject::invokeMethod(
                m_task, [task = m_task, call = std::move(call)] { call(*task); }, Qt::QueuedConnection);
        }
    }

    void cut()
    {
        const std::lock_guard lock(m_mutex);
        m_task = nullptr;
    }

private:
    std::mutex m_mutex;
    BackgroundTask *m_task;
};

BackgroundTask::BackgroundTask(Order order, Effect effect)
    : m_order(order)
    , m_effect(effect)
    , m_line(std::make_shared<Line>(*this))
    , m_pool(makePool(order))
{}

BackgroundTask::~BackgroundTask()
{
    cancelRuns();
    waitUntil(m_isGivenUp ? QDeadlineTimer() : QDeadlineTimer(patience));
    m_line->cut();
    if (m_isGivenUp) {
        giveUp(std::move(m_pool));
        for (std::unique_ptr<QThreadPool> &pool : m_left)
            giveUp(std::move(pool));
    }
}

std::optional<Progress> BackgroundTask::progress() const
{
    return m_runs.empty() ? std::nullopt : std::optional(m_runs.front().progress);
}

void BackgroundTask::start(Run run, Work work)
{
    if (m_order != Order::oneAfterAnother)
        cancelRuns();
    const std::shared_ptr<Job> job = run.job;
    m_pool->start([line = m_line, job, report = reportOf(job), refused = run.refused, work = std::move(work)] {
        Ending ending;
        try {
            job->check();
            ending = work(report);
        } catch (const Cancelled &) {
            ending = nullptr;
        } catch (const std::exception &error) {
            ending = [refused, failure = Failure::of(error)] { refused(failure); };
        }
        line->post([job, ending = std::move(ending)](BackgroundTask &task) { task.end(job.get(), ending); });
    });
    m_runs.push_back(std::move(run));
    Q_EMIT progressChanged();
}

ProgressReport BackgroundTask::reportOf(const std::shared_ptr<Job> &job)
{
    return [line = m_line, job, newest = std::make_shared<Newest>()](const Progress &progress) {
        if (newest->put(progress))
            line->post([job, newest](BackgroundTask &task) { task.setProgress(job.get(), newest->take()); });
    };
}

std::deque<BackgroundTask::Run>::iterator BackgroundTask::find(const Job *job)
{
    return std::ranges::find_if(m_runs, [job](const Run &run) { return run.job.get() == job; });
}

void BackgroundTask::end(const Job *job, const Ending &ending)
{
    const auto found = find(job);
    if (found == m_runs.end())
        return;
    const Run run = std::move(*found);
    m_runs.erase(found);
    Q_EMIT progressChanged();
    if (ending)
        ending();
    else if (run.cancelled)
        run.cancelled();
}

void BackgroundTask::setProgress(const Job *job, const Progress &progress)
{
    const auto run = find(job);
    if (run == m_runs.end() || run->progress == progress)
        return;
    run->progress = progress;
    Q_EMIT progressChanged();
}

void BackgroundTask::cancelRuns()
{
    const std::deque<Run> runs = std::exchange(m_runs, {});
    for (const Run &run : runs)
        run.job->cancel();
    for (const Run &run : runs) {
        if (run.cancelled)
            run.cancelled();
    }
}

/// What comes next has a worker of its own. What writes, or takes its predecessor's place, waits for its end.
void BackgroundTask::leaveCancelledReads()
{
    std::erase_if(m_left, [](const auto &pool) { return pool->activeThreadCount() == 0; });
    if (m_order == Order::oneAfterAnother && m_effect == Effect::reads && m_pool->activeThreadCount() > 0)
        m_left.push_back(std::exchange(m_pool, makePool(m_order)));
}

void BackgroundTask::cancel()
{
    if (m_runs.empty())
        return;
    leaveCancelledReads();
    cancelRuns();
    Q_EMIT progressChanged();
}

void BackgroundTask::wait()
{
    for (const std::unique_ptr<QThreadPool> &pool : m_left)
        pool->waitForDone();
    m_pool->waitForDone();
}

void BackgroundTask::finish(QDeadlineTimer deadline)
{
    cancel();
    waitUntil(deadline);
}

void BackgroundTask::waitUntil(QDeadlineTimer deadline)
{
    const auto isDone = [deadline](const std::unique_ptr<QThreadPool> &pool) {
        return pool->waitForDone(int(deadline.remainingTime()));
    };
    if (m_effect == Effect::writes)
        wait();
    else
        m_isGivenUp = !std::ranges::all_of(m_left, isDone) || !isDone(m_pool);
}
