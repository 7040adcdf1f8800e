#pragma once

#include "core/FrameGrid.h"
#include "core/Subtitle.h"

#include <QList>

#include <optional>
#include <vector>

/// A cue whose times were found, and how sure they are.
struct TimedCue
{
    Subtitle cue;
    double confidence = 0; ///< 0 to 1: the share of its characters that were heard; alike in sound alone is half.
    bool isUnsure = false; ///< Whether a person has to look at its times.

    friend bool operator==(const TimedCue &, const TimedCue &) = default;
};

Q_DECLARE_TYPEINFO(TimedCue, Q_RELOCATABLE_TYPE);

/// Lays cues that were heard in part or not at all onto the frames.
namespace TimedCues {

constexpr double surest = 0.6;        ///< From this confidence on a cue is sure.
constexpr qint64 largestMoveMS = 200; ///< By how much a sure border may be pushed by what stands beside it.

/// A cue as it was heard.
struct Heard
{
    QString text;
    std::optional<qint64> startMS = {}; ///< Absent when nothing of it was heard, as is the end.
    std::optional<qint64> endMS = {};   ///< Not before the start, nor after the next start.
    double confidence = 0;
    bool isUnsure = false;
};

/// The cues with times on `grid`, each at least a frame long, in order and without overlap; numbered from 1. What was
/// not heard shares the time between its neighbours by displayed width, of which a half column takes `msPerHalfColumn`
/// where there is nothing to share; all of that is unsure.
QList<TimedCue> placed(std::vector<Heard> cues, double msPerHalfColumn, const FrameGrid &grid);

} // namespace TimedCues
