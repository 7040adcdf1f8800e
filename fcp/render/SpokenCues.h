#pragma once

#include "ai/SubtitleGeneration.h"
#include "ai/text/Answerer.h"
#include "fcp/render/SoundLevels.h"
#include "fcp/render/SpeechTask.h"

/// Speech turned into cues: the whole way from a recording or a timeline to cues that somebody has proofread.
namespace SpokenCues {

using Reviewer = std::optional<SubtitleAI::Answerer>; ///< Who proofreads; absent: nobody.

struct Result
{
    GeneratedSubtitles made;      ///< Numbered from 1.
    SoundLevels levels;           ///< Of what was heard.
    std::function<void()> forget; ///< As AnsweredCues::forget, for all that was asked.
};

/// Does it. Blocks as long as it takes; nothing is left of processes and files, however it ends.
/// @throws ConversionError when something is missing or wrong with the source or who listens, and when nothing is said;
/// what only proofreading refuses is a notice of the result. PlatformError, Cancelled
Result make(const SpeechTask &task, const Reviewer &reviewer, LocalAIJob &job, const ProgressReport &progress);

} // namespace SpokenCues
