#pragma once

#include "core/FrameGrid.h"
#include "core/Subtitle.h"

#include <optional>

/// Cues moved along the timeline together.
namespace CueShift {

/// How far; below zero: earlier.
struct Distance
{
    qint64 count = 0;                   ///< Frames of `grid` where there is one, else milliseconds.
    std::optional<FrameGrid> grid = {}; ///< Absent: by milliseconds.

    friend bool operator==(const Distance &, const Distance &) = default;
};

/// The time that lies so far from `timeMS`. By frames it stands on the grid, exactly so many frames from the one that
/// `timeMS` is nearest to. Absent outside 0 to CueEditing::latest.
std::optional<qint64> moved(qint64 timeMS, const Distance &distance);

/// With the cues at `indices`, in any order and once each, moved. Neither the order of the list nor other cues change.
/// A cue that begins and ends in one frame keeps its length.
/// @throws ConversionError, with the cue in its detail, unless all of them stay within 0 to CueEditing::latest
QList<Subtitle> moving(QList<Subtitle> items, const QList<qsizetype> &indices, const Distance &distance);

} // namespace CueShift
