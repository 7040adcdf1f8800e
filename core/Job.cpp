#include "core/Job.h"

#include "core/Cancelled.h"

#include <algorithm>
#include <utility>

void Job::check() const
{
    if (isCancelled())
        throw Cancelled();
}

bool Job::isCancelled() const
{
    const std::lock_guard lock(m_mutex);
    return m_cancelled;
}

void Job::cancel()
{
    std::unique_lock lock(m_mutex);
    if (std::exchange(m_cancelled, true))
        return;
    m_canceller = std::this_thread::get_id();
    // An end may take its own registration or another one away: each is looked for anew.
    const auto waiting = [](const std::function<void()> &end) { return static_cast<bool>(end); };
    for (auto next = std::ranges::find_if(m_ends, waiting); next != m_ends.end();
         next = std::ranges::find_if(m_ends, waiting)) {
        const std::function<void()> end = std::exchange(*next, nullptr);
        m_calling = &*next;
        lock.unlock();
        end();
        lock.lock();
        m_calling = nullptr;
        m_called.notify_all();
    }
}

Job::OnCancel::OnCancel(Job &job, std::function<void()> end)
    : m_job(job)
{
    std::unique_lock lock(job.m_mutex);
    const bool isLate = job.m_cancelled;
    m_end = job.m_ends.insert(job.m_ends.end(), isLate ? std::function<void()>() : end);
    lock.unlock();
    if (isLate)
        end();
}

Job::OnCancel::~OnCancel()
{
    std::unique_lock lock(m_job.m_mutex);
    if (m_job.m_canceller != std::this_thread::get_id())
        m_job.m_called.wait(lock, [this] { return m_job.m_calling != &*m_end; });
    m_job.m_ends.erase(m_end);
}
