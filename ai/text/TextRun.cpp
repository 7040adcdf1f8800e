#include "ai/text/TextRun.h"

#include "core/ConversionError.h"
#include "core/Job.h"
#include "core/PlatformError.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SubtitleAI {

namespace {

Q_LOGGING_CATEGORY(log, "local.lintora.workflow.ai")

AnswerLedger::Work ledgerWork(const TextTask &task, const QString &instruction, const TextRun::Service &service)
{
    const bool isTranslation = task.work == TextWork::translation;
    return {.kind = isTranslation ? u"translate"_s : u"proofread"_s,
            .direction = isTranslation ? title(task.direction) : QString(),
            .instruction = instruction,
            .model = service.model,
            .endpoint = service.endpoint,
            .isQuick = service.isQuick};
}

/// Empty when no row holds any: then nobody need be told of terms.
QList<QList<GlossaryTerm>> termsOf(const QList<Subtitle> &rows, const QList<GlossaryTerm> &glossary)
{
    QList<QList<GlossaryTerm>> terms;
    if (!glossary.isEmpty()) {
        for (const Subtitle &row : rows)
            terms.append(Glossary::applying(glossary, row.text));
    }
    const bool isEmpty = std::ranges::all_of(terms, [](const auto &each) { return each.isEmpty(); });
    return isEmpty ? QList<QList<GlossaryTerm>>() : terms;
}

} // namespace

TextRun::TextRun(const QList<Subtitle> &rows, TextTask task, const Service &service, const QString &ledgerFolder)
    : m_source(rows)
    , m_rows(rows)
    , m_task(std::move(task))
    , m_terms(termsOf(rows, m_task.glossary))
    , m_instruction(instruction(m_task.direction, m_task.work,
                                {.reference = !m_task.references.isEmpty(), .terms = !m_terms.isEmpty()}))
    , m_ledger(ledgerFolder, ledgerWork(m_task, m_instruction, service))
    , m_batch(service.batch)
{
    if (rows.isEmpty())
        throw ConversionError(u"请先载入字幕或生成字幕。"_s);
    if (!m_task.references.isEmpty())
        validateReferences(m_task.references, rows);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (const auto known = m_ledger.answer(line(i)))
            m_rows[i].text = *known;
        else
            m_missing.append(i);
    }
}

void TextRun::ask(const Ask &ask, Job &job, const ProgressReport &progress)
{
    QList<Subtitle> asked;
    for (const qsizetype place : m_missing)
        asked.append(m_source[place]);
    QElapsedTimer clock;
    clock.start();
    qsizetype answered = 0;
    for (const qsizetype size : batchSizes(asked, m_batch)) {
        job.check();
        progress(progressAt(answered, clock.elapsed()));
        askBatch(ask, m_missing.sliced(answered, size));
        answered += size;
    }
    progress(progressAt(answered, clock.elapsed()));
}

AnsweredCues TextRun::finish() const
{
    QList<AnswerLedger::Line> lines;
    for (qsizetype i = 0; i < m_source.size(); ++i)
        lines.append(line(i));
    const auto forget = [ledger = m_ledger, lines]() mutable {
        try {
            ledger.drop(lines);
        } catch (const PlatformError &error) {
            qCWarning(log) << "answers are not forgotten:" << error.what();
        }
    };
    return {.cues = m_rows, .forget = forget};
}

AnswerLedger::Line TextRun::line(qsizetype place) const
{
    AnswerLedger::Line line{.text = m_source[place].text};
    if (!m_task.references.isEmpty())
        line.reference = m_task.references[place].text;
    if (!m_terms.isEmpty() && !m_terms[place].isEmpty())
        line.terms = termsText(m_terms[place]);
    return line;
}

void TextRun::askBatch(const Ask &ask, const QList<qsizetype> &places)
{
    QList<Subtitle> batch;
    QList<Subtitle> references;
    QList<AnswerLedger::Line> lines;
    for (const qsizetype place : places) {
        batch.append(m_source[place]);
        lines.append(line(place));
        if (!m_task.references.isEmpty())
            references.append(m_task.references[place]);
    }
    QList<RequestRow> rows = requestRows(batch, references);
    for (qsizetype i = 0; i < rows.size() && !m_terms.isEmpty(); ++i)
        rows[i].terms = m_terms[places[i]];
    const QString answer = ask(m_instruction, rows);
    const QList<Subtitle> answered = parseTranslations(answer.toUtf8(), batch);
    QStringList texts;
    for (qsizetype i = 0; i < places.size(); ++i) {
        m_rows[places[i]].text = answered[i].text;
        texts.append(answered[i].text);
    }
    keep(lines, texts);
}

void TextRun::keep(const QList<AnswerLedger::Line> &lines, const QStringList &texts)
{
    try {
        m_ledger.keep(lines, texts);
    } catch (const PlatformError &error) {
        // A disk that is full, for instance, must not cost the answers that are there.
        qCWarning(log) << "answers are not kept:" << error.what();
    }
}

Progress TextRun::progressAt(qsizetype answered, qint64 elapsedMS) const
{
    const qsizetype missing = m_missing.size();
    const qsizetype done = m_rows.size() - missing + answered;
    const QString what = m_task.work == TextWork::translation ? u"正在翻译"_s : u"正在校对"_s;
    Progress progress{.what = u"%1 · %2 / %3 条"_s.arg(what).arg(done).arg(m_rows.size()),
                      .share = double(done) / double(m_rows.size())};
    if (answered > 0)
        progress.leftMS = elapsedMS * (missing - answered) / answered;
    return progress;
}

} // namespace SubtitleAI
