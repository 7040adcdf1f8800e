#pragma once

#include "core/Subtitle.h"

#include <QStringList>

#include <functional>
#include <optional>

/// What a transcript proposes for one cue.
struct ScriptMatchRow
{
    qint64 id = 0;                      ///< The cue's position in the list, from 0.
    Subtitle original;                  ///< The cue as it was.
    std::optional<QString> replacement; ///< One line of the transcript; absent when the cue was not matched.
    double confidence = 0; ///< 0 to 1: matched characters by the longer of passage and cue; 0 when unmatched.
    bool selected = false; ///< Whether the row is to be applied. People toggle it.

    bool changed() const { return replacement && *replacement != original.text; }
    bool needsReview() const { return !replacement || confidence < 0.7; }

    friend bool operator==(const ScriptMatchRow &, const ScriptMatchRow &) = default;
};

Q_DECLARE_TYPEINFO(ScriptMatchRow, Q_RELOCATABLE_TYPE);

struct ScriptMatchResult
{
    QList<ScriptMatchRow> rows;    ///< One for each cue, in order.
    QStringList unmatchedPassages; ///< What of the transcript no cue received, in its order; trimmed, lines kept.

    qint64 matchedCount() const; ///< Rows with a replacement.
    qint64 changedCount() const; ///< Rows whose replacement differs from the text.
};

/// Corrects the wording of cues by a clean transcript, and keeps their times.
///
/// Both are compared character by character. Only characters with a letter, mark or digit count, and case, accents and
/// width do not (see Folding). The transcript is cut into one passage a cue; punctuation goes with the words before it.
namespace ScriptAlignment {

constexpr qsizetype longestTranscript = 40'000; ///< Characters.
constexpr qsizetype mostCues = 10'000;
constexpr qsizetype longestCue = 4'000; ///< Characters.
constexpr qsizetype mostUnits = 60'000; ///< Characters that count, in all cues together.

/// Proposes a passage of `transcript` for each of `items`; nothing is changed. Rows that differ much are not selected.
///
/// `check` is called at least every few milliseconds; what it throws passes through. Beside its input and result the
/// call takes a few megabytes.
/// @throws ConversionError when either text is over a limit or empty, a cue is invalid, or nothing corresponds.
ScriptMatchResult match(const QString &transcript, const QList<Subtitle> &items, const std::function<void()> &check);

/// Whether the replacement differs from the text in more than marks and white space that nobody speaks. Spoken are %,
/// &, @, # and the like, and what stands between Latin letters or digits: "every day", "2.5".
bool changesWords(const ScriptMatchRow &row);

/// The cues with the replacements of the selected rows; ids and times stay.
QList<Subtitle> apply(const QList<ScriptMatchRow> &rows);

} // namespace ScriptAlignment
