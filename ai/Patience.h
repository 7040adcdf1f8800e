#pragma once

#include "ai/HTTP.h"
#include "core/Progress.h"

#include <functional>

class Job;

/// How an online service is waited for.
namespace Patience {

/// "1:05", "1:02:03": for progress texts.
QString elapsedText(std::chrono::milliseconds elapsed);

/// Sends by `attempt`. Where the service answers 429 or 503 and asks to be left alone for a minute or less, waits that
/// long, visibly, and sends again, three times at most. Any other answer is returned at once.
/// @throws Cancelled, and what `attempt` throws
HTTP::Answer send(const std::function<HTTP::Answer()> &attempt, Job &job, const ProgressReport &progress);

} // namespace Patience
