#pragma once

#include "core/Check.h"
#include "core/FrameGrid.h"
#include "core/HeardWord.h"
#include "core/Subtitle.h"
#include "core/timing/TimedCues.h"

#include <QList>

#include <span>

/// A passage of a script that was not heard.
struct UnspokenPassage
{
    qint64 cueID = 0; ///< The cue in which it begins.
    QString text;     ///< Lines kept.

    friend bool operator==(const UnspokenPassage &, const UnspokenPassage &) = default;
};

Q_DECLARE_TYPEINFO(UnspokenPassage, Q_RELOCATABLE_TYPE);

/// Subtitles with the wording of a script and the times of what was heard.
struct ScriptTimingResult
{
    QList<TimedCue> cues; ///< All of the script, in its order, numbered from 1; on the frame grid, none overlapping.
    QList<UnspokenPassage> unspoken; ///< In order.
    QList<Subtitle> unscripted;      ///< What was heard and is not in the script, in order, numbered from 1.

    QList<Subtitle> subtitles() const; ///< The cues alone.
    qint64 unsureCount() const;        ///< Cues that a person has to look at.

    friend bool operator==(const ScriptTimingResult &, const ScriptTimingResult &) = default;
};

namespace ScriptTiming {

constexpr qsizetype longestScript = 400'000; ///< UTF-16 code units: ten hours of speech.
constexpr qsizetype mostWords = 1'000'000;

struct Rules
{
    int columns = 16; ///< Full-width columns that a cue may have before it is broken; see BreakableCues.
    FrameGrid grid;

    friend bool operator==(const Rules &, const Rules &) = default;
};

/// The cues of `script`, one a line, longer lines broken, each with the times of its own first and last word.
///
/// Where a cue was not heard it stands between its neighbours, shared out by displayed width, and is unsure. What is
/// beside the script in `words`, which are in the order of their times, pulls nothing along.
/// @throws ConversionError when the script or the words are empty or over their limit, or nothing corresponds
ScriptTimingResult timed(const QString &script, std::span<const HeardWord> words, const Rules &rules,
                         const Check &check);

} // namespace ScriptTiming
