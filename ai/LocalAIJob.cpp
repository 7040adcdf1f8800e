#include "ai/LocalAIJob.h"

#include "core/Cancelled.h"

void LocalAIJob::check() const
{
    if (isCancelled())
        throw Cancelled();
}

bool LocalAIJob::isCancelled() const
{
    const std::lock_guard lock(m_mutex);
    return m_cancelled;
}

void LocalAIJob::cancel()
{
    const std::lock_guard lock(m_mutex);
    m_cancelled = true;
}
