#pragma once

#include "ai/EngineModel.h"
#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/text/Answerer.h"

#include <variant>

class AISettings;

/// Who does the work, as a person has chosen.
namespace AIWorkers {

std::variant<EngineModel, SpeechAPIConfiguration> listener(const AISettings &settings); ///< Who recognises speech.
SubtitleAI::Answerer answerer(const AISettings &settings);                              ///< Who translates, proofreads.

} // namespace AIWorkers
