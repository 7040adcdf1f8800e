#pragma once

#include "store/SubtitleTrack.h"

/// How far from the frame's bottom edge titles of several tracks stand, that are seen at once.
namespace TrackHeights {

/// Whether two of `tracks` would lie on top of each other.
bool overlap(const QList<SubtitleTrack> &tracks);

/// Distances in percent of the frame's height, one for each of `tracks`: the last keeps its own, and each stands above
/// all that follow, with room for their lines. Absent when there is no such room below the highest that titles go.
std::optional<QList<double>> stacked(const QList<SubtitleTrack> &tracks);

} // namespace TrackHeights
