#pragma once

#include "core/FrameGrid.h"
#include "core/timing/CueTimeline.h"

#include <functional>

/// What becomes of the times of cues when a person drags them along the timeline.
///
/// A border stands on a frame, or exactly where a neighbour begins or ends. A cue keeps at least one frame, and does
/// not pass its neighbours; where it overlapped one before, it does not come to overlap it more. All stay within 0 to
/// CueEditing::latest.
namespace CueDrag {

/// What of a cue is held.
enum class Part
{
    start,
    end,
    joint, ///< Its end, and the start of the next one that touches it.
    whole
};

struct Grip
{
    qsizetype cue = 0; ///< Its position in the list.
    Part part = Part::whole;
    qsizetype next = -1; ///< The position of the one that touches its end; only for a joint.

    friend bool operator==(const Grip &, const Grip &) = default;
};

/// Finds the time, in milliseconds, that is nearest to one, no further than within a bound.
using Magnet = std::function<std::optional<qint64>(qint64 nearMS, qint64 withinMS)>;

struct Rules
{
    FrameGrid grid;
    bool snaps = true;   ///< Without, borders stand at any millisecond.
    bool passes = false; ///< Whether neighbours may be overlapped.
    qint64 reachMS = 0;  ///< How near a border is drawn to a neighbour or by a magnet.
    Magnet starts = {};  ///< What starts are drawn to beside the neighbours; empty: nothing.
    Magnet ends = {};    ///< The same for ends.
};

/// The new times of what is held, one or two cues, when it has been dragged by `byMS` from where it is in `cues`.
QList<CueTimes> dragged(const CueTimeline &cues, const Grip &grip, qint64 byMS, const Rules &rules);

/// The stretch that is drawn for a new cue from `fromMS` to `toMS`, in either direction. Absent where another cue shows
/// at `fromMS`, or when it is shorter than a frame.
std::optional<CueTimeline::Room> drawn(const CueTimeline &cues, qint64 fromMS, qint64 toMS, const Rules &rules);

/// The cue whose end and the one whose start share a frame, with `cue` the one or the other: a joint is what both are
/// held by. Absent when nothing touches it on that side.
std::optional<Grip> jointAtStart(const CueTimeline &cues, qsizetype cue, const FrameGrid &grid);
std::optional<Grip> jointAtEnd(const CueTimeline &cues, qsizetype cue, const FrameGrid &grid);

} // namespace CueDrag
