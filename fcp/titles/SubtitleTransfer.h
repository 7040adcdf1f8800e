#pragma once

#include "core/Check.h"
#include "core/Subtitle.h"
#include "fcp/Options.h"

#include <QByteArray>

/// What goes to Final Cut Pro's timeline in a drag.
namespace SubtitleTransfer {

/// A document with one "ref-clip" of a media resource "lintoraMedia" that holds the titled sequence. UTF-8.
/// @throws ConversionError as FCPXML::convert does.
QByteArray clip(const QList<Subtitle> &cues, const Options &options, const Check &check = {});

} // namespace SubtitleTransfer
