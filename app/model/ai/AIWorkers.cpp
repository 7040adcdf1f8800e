#include "app/model/ai/AIWorkers.h"

#include "ai/models/LocalModels.h"
#include "ai/speech/Recognition.h"
#include "ai/text/Translation.h"
#include "app/model/ai/AISettings.h"

namespace AIWorkers {

std::function<Listener()> listener(const AISettings &settings)
{
    const AIChoices &choices = settings.choices();
    if (choices.aiUseCloudSpeech) {
        SpeechAPIConfiguration service{.baseURL = choices.aiSpeechBaseURL,
                                       .model = choices.aiSpeechAPIModel,
                                       .apiKey = {},
                                       .wordTimestamps = choices.aiSpeechWordTimestamps};
        return [service, key = settings.keyForWork(AISettings::Service::speech)]() mutable {
            service.apiKey = key();
            return Listener(service);
        };
    }
    const EngineModel model = choices.aiSpeechModelFile.isEmpty()
                                  ? SubtitleAI::speechEngine(LocalModels::speechModel(choices.aiSpeechModelID))
                                  : EngineModel::own(choices.aiSpeechModelFile);
    return [model] { return Listener(model); };
}

std::function<SubtitleAI::Answerer()> answerer(const AISettings &settings)
{
    const AIChoices &choices = settings.choices();
    if (choices.aiUseOnline) {
        OnlineAIConfiguration service{.baseURL = choices.aiAPIBaseURL,
                                      .model = choices.aiAPIModel,
                                      .apiKey = {},
                                      .quickReview = choices.aiAPIQuickReview};
        return [service, key = settings.keyForWork(AISettings::Service::text)]() mutable {
            service.apiKey = key();
            return SubtitleAI::Answerer(service);
        };
    }
    const EngineModel model =
        choices.aiTextModelFile.isEmpty() ? SubtitleAI::textEngine() : EngineModel::own(choices.aiTextModelFile);
    return [model] { return SubtitleAI::Answerer(model); };
}

} // namespace AIWorkers
