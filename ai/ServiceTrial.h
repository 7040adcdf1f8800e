#pragma once

#include "core/Progress.h"

class LocalAIJob;
struct OnlineAIConfiguration;
struct SpeechAPIConfiguration;

/// Finds out whether a service does what the program needs of it, by asking it for very little: as in earnest, its
/// answer has to pass all checks.
namespace ServiceTrial {

/// Has one short cue proofread. @throws as OnlineSubtitleAI::answer does
void text(const OnlineAIConfiguration &service, LocalAIJob &job, const ProgressReport &progress);

/// Has a second of silence transcribed. @throws as SpeechSubtitleAPI::transcribe does
void speech(const SpeechAPIConfiguration &service, LocalAIJob &job, const ProgressReport &progress);

} // namespace ServiceTrial
