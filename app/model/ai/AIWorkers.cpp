#include "app/model/ai/AIWorkers.h"

#include "ai/models/LocalModels.h"
#include "ai/speech/Recognition.h"
#include "ai/text/Translation.h"
#include "app/model/ai/AISettings.h"

namespace AIWorkers {

std::variant<EngineModel, SpeechAPIConfiguration> listener(const AISettings &settings)
{
    const AIChoices &choices = settings.choices();
    if (choices.aiUseCloudSpeech)
        return SpeechAPIConfiguration{.baseURL = choices.aiSpeechBaseURL,
                                      .model = choices.aiSpeechAPIModel,
                                      .apiKey = settings.aiSpeechAPIKey(),
                                      .wordTimestamps = choices.aiSpeechWordTimestamps};
    if (!choices.aiSpeechModelFile.isEmpty())
        return EngineModel::own(choices.aiSpeechModelFile);
    return SubtitleAI::speechEngine(LocalModels::speechModel(choices.aiSpeechModelID));
}

SubtitleAI::Answerer answerer(const AISettings &settings)
{
    const AIChoices &choices = settings.choices();
    if (choices.aiUseOnline)
        return OnlineAIConfiguration{.baseURL = choices.aiAPIBaseURL,
                                     .model = choices.aiAPIModel,
                                     .apiKey = settings.aiAPIKey(),
                                     .quickReview = choices.aiAPIQuickReview};
    return choices.aiTextModelFile.isEmpty() ? SubtitleAI::textEngine() : EngineModel::own(choices.aiTextModelFile);
}

} // namespace AIWorkers
