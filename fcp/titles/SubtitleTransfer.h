#pragma once

#include "core/Check.h"
#include "fcp/titles/TitleTrack.h"

#include <QByteArray>

#include <vector>

/// What goes to Final Cut Pro's timeline in a drag.
namespace SubtitleTransfer {

/// A document with one "ref-clip" of a media resource "lintoraMedia" that holds the titled sequence. UTF-8.
/// @throws ConversionError as FCPXML::convert does.
QByteArray clip(const QList<Subtitle> &cues, const Options &options, const Check &check = {});

/// The same with several tracks, each on its lane.
QByteArray clip(const std::vector<TitleTrack> &tracks, const Check &check = {});

} // namespace SubtitleTransfer
