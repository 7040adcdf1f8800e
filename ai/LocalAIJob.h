#pragma once

#include "core/Job.h"

#include <functional>
#include <memory>
#include <mutex>

/// The cancellable handle of one AI action: what its cancel button and the program's end reach.
///
/// The action runs on a worker and keeps at most one network request here, so that cancelling ends it at once.
/// All calls are safe from any thread.
class LocalAIJob : public Job
{
public:
    /// Takes note of the request now running in place of the one before. `abort` ends it; it is called once at most, by
    /// whoever cancels, or at once when the job is cancelled already. It must be safe to call from any thread and not
    /// throw. When this returns, the abort of the request before is neither running nor called any more.
    void setRequest(std::function<void()> abort);

    /// The request is over, or its abort must not be called any more.
    void clearRequest();

private:
    void replaceRequest(std::unique_ptr<OnCancel> request);

    std::mutex m_mutex; ///< Guards what follows; never held while calling out.
    std::unique_ptr<OnCancel> m_request;
};
