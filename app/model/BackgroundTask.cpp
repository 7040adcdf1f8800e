#include "app/model/BackgroundTask.h"

#include "core/Cancelled.h"

#include <algorithm>
#include <utility>

BackgroundTask::BackgroundTask(Order order)
    : m_order(order)
{
    // An operation that was cancelled may need a moment to notice; the one in its place does not wait for it.
    constexpr int threads = 4;
    m_pool.setMaxThreadCount(order == Order::newestOnly ? threads : 1);
}

BackgroundTask::~BackgroundTask()
{
    for (const Run &run : m_runs)
        run.job->cancel();
    m_pool.waitForDone();
}

std::optional<QString> BackgroundTask::activity() const
{
    return m_runs.empty() ? std::nullopt : std::optional(m_runs.front().activity);
}

void BackgroundTask::start(const QString &what, Work work, const Refused &refused)
{
    if (m_order == Order::newestOnly) {
        for (const Run &run : std::exchange(m_runs, {}))
            run.job->cancel();
    }
    const auto job = std::make_shared<Job>();
    m_runs.push_back({.job = job, .activity = what});
    const auto progress = [this, job](const QString &now) {
        QMetaObject::invokeMethod(
            this, [this, job, now] { setActivity(job.get(), now); }, Qt::QueuedConnection);
    };
    m_pool.start([this, job, progress, work = std::move(work), refused] {
        Delivery delivery = [] {};
        try {
            job->check();
            delivery = work(*job, progress);
        } catch (const Cancelled &) { // NOLINT(bugprone-empty-catch): an outcome, of which nothing is told
        } catch (const std::exception &error) {
            delivery = [refused, sentence = QString::fromUtf8(error.what())] { refused(sentence); };
        }
        QMetaObject::invokeMethod(
            this, [this, job, delivery = std::move(delivery)] { deliver(job.get(), delivery); }, Qt::QueuedConnection);
    });
    Q_EMIT activityChanged();
}

std::deque<BackgroundTask::Run>::iterator BackgroundTask::find(const Job *job)
{
    return std::ranges::find_if(m_runs, [job](const Run &run) { return run.job.get() == job; });
}

void BackgroundTask::deliver(const Job *job, const Delivery &delivery)
{
    const auto run = find(job);
    if (run == m_runs.end())
        return;
    m_runs.erase(run);
    Q_EMIT activityChanged();
    delivery();
}

void BackgroundTask::setActivity(const Job *job, const QString &what)
{
    const auto run = find(job);
    if (run == m_runs.end() || run->activity == what)
        return;
    run->activity = what;
    Q_EMIT activityChanged();
}

void BackgroundTask::cancel()
{
    if (m_runs.empty())
        return;
    for (const Run &run : std::exchange(m_runs, {}))
        run.job->cancel();
    Q_EMIT activityChanged();
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
