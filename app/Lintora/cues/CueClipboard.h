#pragma once

#include "core/Subtitle.h"

#include <QList>
#include <QMimeData>

#include <memory>

/// Cues on the clipboard: their texts for every program, a line feed between them, and all of them for this one.
namespace CueClipboard {

std::unique_ptr<QMimeData> offering(const QList<Subtitle> &cues);

/// The cues that `data` holds for this program; none when it holds none. Anybody may have put them there: their times
/// and texts are still to be checked.
QList<Subtitle> cuesIn(const QMimeData &data);

} // namespace CueClipboard
