#pragma once

#include "core/Subtitle.h"

#include <QFlags>

/// What a reviewer proposes for one cue.
struct ReviewRow
{
    /// Why a proposal should be read before it is taken.
    enum class Risk
    {
        numbers = 1,   ///< Another number, or one more or less.
        names = 2,     ///< Another name in Latin letters.
        negations = 4, ///< A negation more or less.
        mostOfCue = 8  ///< More than half of the cue is another text.
    };
    Q_DECLARE_FLAGS(Risks, Risk)

    Subtitle before;       ///< The cue as it was.
    QString after;         ///< The text that is proposed.
    Risks risks = {};      ///< Of the change; none where nothing changes.
    bool selected = false; ///< Whether the row is to be applied. People toggle it.

    bool changed() const { return after != before.text; }

    friend bool operator==(const ReviewRow &, const ReviewRow &) = default;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ReviewRow::Risks)
Q_DECLARE_TYPEINFO(ReviewRow, Q_RELOCATABLE_TYPE);

/// Judges a reviewed list of cues against the one that was sent, cue by cue.
///
/// A reviewer corrects spelling; what turns a meaning round is a number, a name, a "not", or a sentence of its own.
/// Such rows are not selected: they wait for a person.
namespace ReviewRows {

/// A row for each cue, in order. Selected are those that change and bear no risk. Both lists are of one length, and
/// ids and times are equal.
QList<ReviewRow> make(const QList<Subtitle> &before, const QList<Subtitle> &after);

/// What is risky about turning `before` into `after`.
ReviewRow::Risks risks(const QString &before, const QString &after);

/// The reasons in the words that a person reads, joined by "；"; empty for none.
QString reason(ReviewRow::Risks risks);

/// The cues as they were, with the texts of the selected rows.
QList<Subtitle> apply(const QList<ReviewRow> &rows);

} // namespace ReviewRows
