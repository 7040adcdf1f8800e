#pragma once

#include "ai/text/OnlineAIConfiguration.h"
#include "ai/text/TextRun.h"
#include "core/ConversionError.h"

class LocalAIJob;

/// Translation and proofreading by an online chat service.
namespace OnlineSubtitleAI {

/// The JSON body that asks for one batch.
QByteArray requestBody(const QString &instruction, const QList<SubtitleAI::RequestRow> &rows,
                       const OnlineAIConfiguration &configuration);

/// What the model wrote, out of a whole answer, without the code fence it may stand in.
/// @throws ConversionError "API 返回格式不兼容，需要 Chat Completions 接口。"
QString content(QByteArrayView answer);

/// What the person is told of an answer with another status than 200. The service's own words are part of it, as far as
/// they are short, and never the key.
ConversionError requestError(int status, QByteArrayView body, const OnlineAIConfiguration &configuration);

/// `rows` with the texts that the service gives them; ids and times stay.
///
/// All cues come back or none; but the batches that were answered are kept in the ledger in `ledgerFolder`, and the
/// next call with the same cues asks, and pays, only for the rest.
/// @throws ConversionError; PlatformError in the network's own words, Cancelled
AnsweredCues answer(const QList<Subtitle> &rows, const SubtitleAI::TextTask &task,
                    const OnlineAIConfiguration &configuration, const QString &ledgerFolder, LocalAIJob &job,
                    const ProgressReport &progress);

} // namespace OnlineSubtitleAI
