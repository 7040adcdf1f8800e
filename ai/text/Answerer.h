#pragma once

#include "ai/EngineModel.h"
#include "ai/text/OnlineAIConfiguration.h"
#include "ai/text/TextRun.h"

#include <variant>

class LocalAIJob;

namespace SubtitleAI {

/// Who translates and proofreads: a language model on this machine, or a service.
using Answerer = std::variant<EngineModel, OnlineAIConfiguration>;

/// `rows` with the texts that `answerer` gives them; ids and times stay. Blocks as long as that takes.
/// @throws what translate and OnlineSubtitleAI::answer throw
AnsweredCues answer(const QList<Subtitle> &rows, const TextTask &task, const Answerer &answerer,
                    const QString &ledgerFolder, LocalAIJob &job, const ProgressReport &progress);

} // namespace SubtitleAI
