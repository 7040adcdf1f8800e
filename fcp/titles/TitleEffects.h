#pragma once

#include "fcp/titles/Identifiers.h"
#include "fcp/titles/PlacedTracks.h"

/// The effects of titles among a document's resources.
namespace TitleEffects {

/// The ids of each track's effects, the titles' own first; none for captions. What is not there yet is added: behind
/// `after` on lines of its own, or, where that is null, at the end of `resources`. Effects of the user's own that are
/// there already are referred to; ours is always added, once.
std::vector<QList<QByteArray>> add(xmlNode *resources, xmlNode *after, const std::vector<PlacedTrack> &tracks,
                                   const Identifiers &ids);

} // namespace TitleEffects
