#pragma once

#include "ai/EngineModel.h"
#include "ai/speech/Transcript.h"
#include "cli/ServiceArguments.h"

/// The options that say who recognises speech, and in which language.
struct SpeechArguments
{
    SubtitleAI::SpeechLanguage language = SubtitleAI::SpeechLanguage::automatic;
    std::string model;
    std::string modelFile;
    ServiceArguments service; ///< Given where a service recognises.

    /// --language, --model, --model-file, --api and what goes with it.
    void add(CLI::App &command);

    /// The model on this machine. @throws (its prepare) when it is not there
    EngineModel engine() const;
};
