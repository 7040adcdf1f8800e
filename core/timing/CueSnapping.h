#pragma once

#include "core/FrameGrid.h"
#include "core/Subtitle.h"

#include <QList>

class SpeechBorders;

/// Brings the borders of cues to where speech begins and ends.
namespace CueSnapping {

/// By how much a cue's borders were moved. Milliseconds; earlier is negative.
struct Move
{
    qsizetype cue = 0; ///< Its position in the list.
    qint64 startBy = 0;
    qint64 endBy = 0;

    friend bool operator==(const Move &, const Move &) = default;
};

struct Result
{
    QList<Subtitle> cues; ///< In the same order, with the same ids.
    QList<Move> moves;    ///< Of those that moved, in their order.
};

constexpr qint64 usualMS = 200;      ///< How far a border moves at most, unless said.
constexpr qint64 furthestMS = 1'000; ///< Further away it is not about this cue any more.

/// `cues` with their borders on the frame of `grid` next to an onset or end of speech that is no more than `withinMS`
/// away. A border stays where there is doubt: no speech begins or ends near it, or two times are as likely; it would
/// come to lie in a neighbour; less than half of the cue would be left. One that is on that frame already stays as it
/// is to the millisecond.
Result snapped(QList<Subtitle> cues, const SpeechBorders &borders, const FrameGrid &grid, qint64 withinMS = usualMS);

} // namespace CueSnapping
