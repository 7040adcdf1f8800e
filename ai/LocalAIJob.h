#pragma once

#include <mutex>

/// What a long operation and the person who may stop it have in common.
///
/// The operation runs on a worker and asks now and then; the person's side cancels from the main thread. Cancelling is
/// final. All calls are safe from any thread.
class LocalAIJob
{
public:
    /// @throws Cancelled once the job is cancelled.
    void check() const;

    bool isCancelled() const;

    /// Makes every later check() throw. The operation ends when it asks next.
    void cancel();

private:
    mutable std::mutex m_mutex; ///< Guards what follows; never held while calling out.
    bool m_cancelled = false;
};
