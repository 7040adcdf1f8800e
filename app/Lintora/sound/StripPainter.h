#pragma once

#include "app/Lintora/sound/TimeScale.h"
#include "core/sound/Waveform.h"
#include "core/timing/CueTimeline.h"

#include <QRect>

class QPainter;

namespace VELTheme {
struct Colors;
}

/// What is to be seen in a strip.
struct StripScene
{
    const TimeScale &scale;
    const CueTimeline &cues;
    const Waveform &waveform;
    FrameGrid grid;
    std::optional<qsizetype> current;        ///< The cue that is worked on.
    const QList<CueTimes> &moved;            ///< Cues that are drawn elsewhere than they are: those being dragged.
    std::optional<CueTimeline::Room> newCue; ///< One that is being drawn.
    qint64 playheadMS = 0;
};

/// Draws a strip: a ruler, below it the sound with the cues over it, below that their texts. It looks at nothing that
/// is not in sight, and keeps nothing from one time to the next.
namespace StripPainter {

constexpr int rulerHeight = 20;
constexpr int laneHeight = 24; ///< Of the texts.

/// Draws what of `scene` lies in `part`, in a strip that is `size` large.
void paint(QPainter &painter, const StripScene &scene, QSize size, const QRect &part, const VELTheme::Colors &colors);

/// What has to be drawn anew when the playhead goes from or to `x`.
QRect playheadAt(double x, int height);

} // namespace StripPainter
