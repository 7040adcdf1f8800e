#pragma once

#include "store/SubtitleTrack.h"

#include <optional>
#include <utility>

/// How far from the frame's bottom edge titles of several tracks stand, that are seen at once.
namespace TrackHeights {

/// The positions of two of `tracks`, ascending, whose lines would lie on each other; absent when there are none. Where
/// titles of the user's own stand is not known, and of an empty track nothing is seen.
std::optional<std::pair<qsizetype, qsizetype>> overlapping(const QList<SubtitleTrack> &tracks);

/// Distances in percent of the frame's height, one for each of `tracks`: the last keeps its own, and each stands above
/// all that follow, with room for their lines. Absent when there is no such room below the highest that titles go.
std::optional<QList<double>> stacked(const QList<SubtitleTrack> &tracks);

} // namespace TrackHeights
