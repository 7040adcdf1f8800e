#pragma once

#include "cli/ServiceArguments.h"
#include "fcp/render/SpeechTask.h"

/// The options that say who recognises speech, and in which language.
struct SpeechArguments
{
    SubtitleAI::SpeechLanguage language = SubtitleAI::SpeechLanguage::automatic;
    std::string model;
    std::string modelFile;
    ServiceArguments service; ///< Given where a service recognises.

    /// --language, --model, --model-file, --api and what goes with it.
    void add(CLI::App &command);

    /// All but what is to be heard. With `wantsWords` a service is asked for the times of words.
    /// @throws as ServiceArguments::forSpeech; (its model's prepare) when a model is not there
    SpeechTask task(bool wantsWords) const;

private:
    EngineModel engine() const;
};
