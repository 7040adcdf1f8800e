#pragma once

#include "ai/SubtitleGeneration.h"
#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/speech/Transcript.h"
#include "ai/text/Answerer.h"
#include "fcp/audio/FCPAudioPlan.h"
#include "fcp/render/SoundLevels.h"

#include <variant>

/// Speech turned into cues: the whole way from a recording or a timeline to cues that somebody has proofread.
namespace SpokenCues {

/// What is to be recognised, and by whom.
struct Task
{
    std::variant<QString, FCPAudioPlan> source = {}; ///< The path of a recording, or a timeline.
    SubtitleAI::SpeechLanguage language = SubtitleAI::SpeechLanguage::automatic;
    std::variant<EngineModel, SpeechAPIConfiguration> listener = {}; ///< A model on this machine, or a service.
    std::optional<SubtitleAI::Answerer> reviewer = {};               ///< Who proofreads; absent: nobody.
    bool leavesOutMissing = false; ///< What sounds of files that are not there is left out, instead of refused.
};

struct Result
{
    GeneratedSubtitles made;      ///< Numbered from 1.
    SoundLevels levels;           ///< Of what was heard.
    std::function<void()> forget; ///< As AnsweredCues::forget, for all that was asked.
};

/// Does it. Blocks as long as it takes; nothing is left of processes and files, however it ends.
/// @throws ConversionError when something is missing or wrong with the source or who listens, and when nothing is said;
/// what only proofreading refuses is a notice of the result. PlatformError, Cancelled
Result make(const Task &task, LocalAIJob &job, const ProgressReport &progress);

} // namespace SpokenCues
