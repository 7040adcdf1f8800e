#pragma once

#include "ai/AnswerLedger.h"
#include "ai/AnsweredCues.h"
#include "ai/text/Protocol.h"
#include "core/Progress.h"

class Job;

namespace SubtitleAI {

/// What is to be done with cues.
struct TextTask
{
    TextWork work = TextWork::translation;
    Direction direction = Direction::chineseToEnglish;
    QList<Subtitle> references = {};   ///< The originals of translated cues that are proofread; else empty.
    QList<GlossaryTerm> glossary = {}; ///< A person's own terms, for a translation. What applies is sent along.
};

/// One run of a task over cues, whoever answers: batches, the checks of each answer, and the ledger, which may know
/// some of the answers from a run that did not end.
class TextRun
{
public:
    /// Who answers: its model, its address and whether it was asked to be quick.
    struct Service
    {
        QByteArray model;
        QString endpoint = {};
        bool isQuick = false;
        qsizetype batch = 1'200; ///< Characters of the largest batch.
    };

    /// What the model wrote on one batch. What it throws ends the run; what was answered before stays in the ledger.
    using Ask = std::function<QString(const QString &instruction, const QList<RequestRow> &rows)>;

    /// @throws ConversionError when there are no cues, or the references are not theirs
    TextRun(const QList<Subtitle> &rows, TextTask task, const Service &service, const QString &ledgerFolder);

    bool isComplete() const { return m_missing.isEmpty(); } ///< Whether nobody need be asked.

    /// Asks for what is missing, batch after batch. @throws ConversionError as parseTranslations does; Cancelled
    void ask(const Ask &ask, Job &job, const ProgressReport &progress);

    /// The cues with all the answers, which the ledger keeps until it is told to forget them.
    AnsweredCues finish() const;

private:
    AnswerLedger::Line line(qsizetype place) const;
    void askBatch(const Ask &ask, const QList<qsizetype> &places);
    void keep(const QList<AnswerLedger::Line> &lines, const QStringList &texts);
    Progress progressAt(qsizetype answered, qint64 elapsedMS) const;

    QList<Subtitle> m_source; ///< The cues as they came.
    QList<Subtitle> m_rows;   ///< With the answers that are there.
    TextTask m_task;
    QList<QList<GlossaryTerm>> m_terms; ///< Of each cue, those of the glossary that it holds; empty without any.
    QString m_instruction;
    AnswerLedger m_ledger;
    qsizetype m_batch;          ///< Characters of the largest batch.
    QList<qsizetype> m_missing; ///< Places of the cues that the ledger did not know.
};

} // namespace SubtitleAI
