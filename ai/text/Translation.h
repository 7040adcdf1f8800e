#pragma once

#include "ai/EngineModel.h"
#include "ai/text/TextRun.h"
#include "core/Progress.h"

class LocalAIJob;

namespace SubtitleAI {

/// The catalog's model for translation and proofreading. @throws (its prepare) "请先下载翻译模型。"
EngineModel textEngine();

/// `rows` with the texts that the model gives them, on this machine alone; ids and times stay.
///
/// Blocks as long as the model takes. All cues come back or none; but the batches that were answered are kept in the
/// ledger in `ledgerFolder`, and the next call with the same cues asks only for the rest. The server and its files are
/// gone when this ends, however it does.
/// @throws ConversionError; PlatformError, Cancelled
AnsweredCues translate(const QList<Subtitle> &rows, const TextTask &task, const EngineModel &model,
                       const QString &ledgerFolder, LocalAIJob &job, const ProgressReport &progress);

} // namespace SubtitleAI
