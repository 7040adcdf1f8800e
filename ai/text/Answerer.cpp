#include "ai/text/Answerer.h"

#include "ai/text/OnlineSubtitleAI.h"
#include "ai/text/Translation.h"

namespace SubtitleAI {

AnsweredCues answer(const QList<Subtitle> &rows, const TextTask &task, const Answerer &answerer,
                    const QString &ledgerFolder, LocalAIJob &job, const ProgressReport &progress)
{
    if (const auto *const service = std::get_if<OnlineAIConfiguration>(&answerer))
        return OnlineSubtitleAI::answer(rows, task, *service, ledgerFolder, job, progress);
    return translate(rows, task, std::get<EngineModel>(answerer), ledgerFolder, job, progress);
}

} // namespace SubtitleAI
