#pragma once

#include "fcp/titles/TitleGrid.h"
#include "fcp/titles/TitleTrack.h"

/// A track whose cues are checked and lie on the frame grid.
struct PlacedTrack
{
    TitleTrack track;
    std::vector<TitleGrid::Title> titles; ///< Look into the track's cues.
};

/// The tracks of one document, before it is known what document that is.
namespace PlacedTracks {

/// @throws ConversionError as TitleGrid::place does, when the tracks differ in frame rate, when captions of one role
/// overlap, which is told of the later one, or when two tracks have the same caption role
std::vector<PlacedTrack> place(const std::vector<TitleTrack> &tracks, const Check &check = {});

/// The title that ends last. There is one at least.
const TitleGrid::Title &last(const std::vector<PlacedTrack> &tracks);

} // namespace PlacedTracks
