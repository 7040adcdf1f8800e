#include "ai/text/Translation.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/models/LocalModels.h"
#include "ai/text/TranslationServer.h"
#include "core/ConversionError.h"
#include "core/text/Characters.h"

using namespace Qt::StringLiterals;

namespace SubtitleAI {

namespace {

void checkLengths(const QList<Subtitle> &rows)
{
    constexpr qsizetype longest = 1'500; // characters
    for (const Subtitle &row : rows) {
        if (Characters::count(row.text) > longest)
            throw ConversionError(u"单条字幕超过 1500 字，请分句后翻译。"_s, u"第 %1 条字幕"_s.arg(row.id));
    }
}

} // namespace

EngineModel textEngine()
{
    return EngineModel::ofCatalog(LocalModels::translation(), u"请先下载翻译模型。"_s, u"正在校验翻译与校对模型…"_s);
}

AnsweredCues translate(const QList<Subtitle> &rows, const TextTask &task, const EngineModel &model,
                       const QString &ledgerFolder, LocalAIJob &job, const ProgressReport &progress)
{
    TextRun run(rows, task, {.model = model.identity}, ledgerFolder);
    model.prepare(job, progress);
    checkLengths(rows);
    job.check();
    if (!run.isComplete()) {
        const Workspace workspace;
        TranslationServer server(model.file, job, workspace, progress);
        const auto ask = [&](const QString &instruction, const QList<RequestRow> &batch) {
            return completionContent(server.complete(completionRequest(instruction, batch)));
        };
        run.ask(ask, job, progress);
    }
    return run.finish();
}

} // namespace SubtitleAI
