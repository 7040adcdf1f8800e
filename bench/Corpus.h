#pragma once

#include "core/Subtitle.h"

#include <QByteArray>

/// What the benchmarks work on: the same bytes on every machine.
namespace Corpus {

/// `count` cues of Chinese speech, 2 to 20 characters each, in order.
QList<Subtitle> cues(qsizetype count);

/// The same as an SRT file in UTF-8: 78 bytes a cue.
QByteArray srt(qsizetype count);

enum class Clips
{
    bare, ///< Nothing inside: 145 bytes a clip.
    full  ///< Adjustments, a connected clip and a marker in each: 480 bytes a clip.
};

/// A project at 25 frames a second whose storyline of 2,000 clips is as long as `cues(count)`.
QByteArray project(Clips clips, qsizetype count);

} // namespace Corpus
