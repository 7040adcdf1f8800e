#include "ai/LocalAIJob.h"

#include <utility>

void LocalAIJob::setRequest(std::function<void()> abort)
{
    replaceRequest(std::make_unique<OnCancel>(*this, std::move(abort)));
}

void LocalAIJob::clearRequest()
{
    replaceRequest(nullptr);
}

void LocalAIJob::replaceRequest(std::unique_ptr<OnCancel> request)
{
    const std::lock_guard lock(m_mutex);
    // The parameter outlives the lock: the one before is let go after it, for that may wait for its abort to return.
    std::swap(m_request, request);
}
