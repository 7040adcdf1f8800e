#pragma once

#include "core/FrameGrid.h"
#include "core/Subtitle.h"

#include <optional>

/// A cue cut in two at a time, for instance where the playhead stands.
namespace CueCut {

/// With the cue at `index` cut at the frame that is nearest to `timeMS`. Its text is parted where that much of it has
/// been shown, or at a better place near there; the second part follows under the list's highest id + 1.
/// @throws ConversionError where one side would be less than a frame, or without text; PlatformError without
/// dictionaries
QList<Subtitle> cut(QList<Subtitle> items, qsizetype index, qint64 timeMS, const FrameGrid &grid);

/// The UTF-16 unit of `text` before which it is best parted when `share` of it, 0 to 1, has been shown: a break between
/// lines, clauses or words near there. Absent when it is a single character. @throws PlatformError without dictionaries
std::optional<qsizetype> place(const QString &text, double share);

} // namespace CueCut
