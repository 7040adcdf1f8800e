#pragma once

#include "fcp/titles/TitleTrack.h"
#include "store/SubtitleTrack.h"

#include <vector>

/// Tracks of a session on their way into one document of titles.
namespace TitleTracks {

/// Those of `tracks` that have cues, each in its own style, to lie on lanes in that order. The document has the frame
/// of the first one; the letters of the others keep their share of its height.
/// @throws ConversionError "请先打开 SRT。" when none has cues; "各条字幕轨的帧率不一致。", which names them in the
/// detail
std::vector<TitleTrack> of(const QList<SubtitleTrack> &tracks);

/// Names two tracks whose titles would lie on each other (TrackHeights); empty when there are none.
QString covering(const QList<SubtitleTrack> &tracks);

} // namespace TitleTracks
