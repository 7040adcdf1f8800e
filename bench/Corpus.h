#pragma once

#include <QByteArray>

#include "core/Subtitle.h"

/// What the benchmarks work on: the same bytes on every machine.
namespace Corpus {

/// `count` cues of Chinese speech, 2 to 20 characters each, in order.
QList<Subtitle> cues(qsizetype count);

/// The same as an SRT file in UTF-8: 78 bytes a cue.
QByteArray srt(qsizetype count);

/// A project at 25 frames a second whose storyline of `clips` clips is as long as `cues(count)`, each clip with a
/// source range, an adjustment, a marker and a connected clip: 650 bytes a clip.
QByteArray project(qsizetype clips, qsizetype count);

} // namespace Corpus
