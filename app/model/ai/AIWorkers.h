#pragma once

#include "ai/EngineModel.h"
#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/text/Answerer.h"

#include <functional>
#include <variant>

class AISettings;

/// Who does the work, as a person has chosen. What is returned is called once, on the worker: it may wait for the
/// keychain, which holds a service's key until it has been loaded.
namespace AIWorkers {

using Listener = std::variant<EngineModel, SpeechAPIConfiguration>;

std::function<Listener()> listener(const AISettings &settings);             ///< Who recognises speech.
std::function<SubtitleAI::Answerer()> answerer(const AISettings &settings); ///< Who translates and proofreads.

} // namespace AIWorkers
