#pragma once

#include "ai/EngineModel.h"
#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/speech/Transcript.h"
#include "fcp/audio/FCPAudioPlan.h"

#include <variant>

/// What speech is to be heard, and by whom.
struct SpeechTask
{
    std::variant<QString, FCPAudioPlan> source = {}; ///< The path of a recording, or a timeline.
    SubtitleAI::SpeechLanguage language = SubtitleAI::SpeechLanguage::automatic;
    std::variant<EngineModel, SpeechAPIConfiguration> listener = {}; ///< A model on this machine, or a service.
    bool leavesOutMissing = false; ///< What sounds of files that are not there is left out, instead of refused.
};
