#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

/// What a long operation and the person who may stop it have in common.
///
/// The operation runs on a worker and asks now and then; the person's side cancels from the main thread. Cancelling is
/// final. All calls are safe from any thread.
class Job
{
public:
    /// While it lives, cancelling the job calls `end`: what makes a blocking wait return.
    ///
    /// `end` is called once at most, by the thread that cancels, or at once, by the constructor, when the job is
    /// cancelled already; never under a lock of the job's. It must not throw. Once the destructor has returned, `end`
    /// is neither running nor called any more; only inside `end` itself does the destructor not wait for it.
    class OnCancel
    {
    public:
        OnCancel(Job &job, std::function<void()> end);
        ~OnCancel();
        OnCancel(const OnCancel &) = delete;
        OnCancel &operator=(const OnCancel &) = delete;

    private:
        Job &m_job;
        std::list<std::function<void()>>::iterator m_end;
    };

    Job() = default;
    virtual ~Job() = default;
    Job(const Job &) = delete;
    Job &operator=(const Job &) = delete;

    /// @throws Cancelled once the job is cancelled.
    void check() const;

    bool isCancelled() const;

    /// Makes every later check() throw, and ends the waits that are registered.
    void cancel();

private:
    using Ends = std::list<std::function<void()>>;

    mutable std::mutex m_mutex; ///< Guards what follows; never held while calling out.
    std::condition_variable m_called;
    bool m_cancelled = false;
    Ends m_ends;                                      ///< In the order of registration. An empty one was called.
    const std::function<void()> *m_calling = nullptr; ///< The one that cancel() is calling.
    std::thread::id m_canceller;
};
