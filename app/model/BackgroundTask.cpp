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

} // namespace

BackgroundTask::BackgroundTask(Order order)
    : m_order(order)
{
    // An operation that was cancelled may need a moment to notice; the one in its place does not wait for it.
    constexpr int threads = 4;
    m_pool.setMaxThreadCount(order == Order::newestOnly ? threads : 1);
}

BackgroundTask::~BackgroundTask()
{
    cancelRuns();
    m_pool.waitForDone();
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
    m_pool.start([this, job, report = reportOf(job), refused = run.refused, work = std::move(work)] {
        Ending ending;
        try {
            job->check();
            ending = work(report);
        } catch (const Cancelled &) {
            ending = nullptr;
        } catch (const std::exception &error) {
            ending = [refused, sentence = QString::fromUtf8(error.what())] { refused(sentence); };
        }
        QMetaObject::invokeMethod(
            this, [this, job, ending = std::move(ending)] { end(job.get(), ending); }, Qt::QueuedConnection);
    });
    m_runs.push_back(std::move(run));
    Q_EMIT progressChanged();
}

ProgressReport BackgroundTask::reportOf(const std::shared_ptr<Job> &job)
{
    return [this, job, newest = std::make_shared<Newest>()](const Progress &progress) {
        if (newest->put(progress)) {
            QMetaObject::invokeMethod(
                this, [this, job, newest] { setProgress(job.get(), newest->take()); }, Qt::QueuedConnection);
        }
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

void BackgroundTask::cancel()
{
    if (m_runs.empty())
        return;
    cancelRuns();
    Q_EMIT progressChanged();
}

void BackgroundTask::wait()
{
    m_pool.waitForDone();
}

void BackgroundTask::finish()
{
    cancel();
    wait();
}
