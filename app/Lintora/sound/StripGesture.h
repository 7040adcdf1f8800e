#pragma once

#include "app/Lintora/sound/TimeScale.h"
#include "core/timing/CueDrag.h"

/// What the pointer holds in a strip of cues, and what becomes of that while it moves. Nothing else changes until it is
/// let go.
class StripGesture
{
public:
    static constexpr double reach = 6; ///< Points beside a border from which it can still be held.

    /// What of a cue lies at `x`; absent between cues. Of touching borders it is both, unless `single`. `preferred` is
    /// a cue that comes first where several lie there.
    static std::optional<CueDrag::Grip> at(const CueTimeline &cues, const TimeScale &scale, double x,
                                           const FrameGrid &grid, bool single,
                                           std::optional<qsizetype> preferred = std::nullopt);

    void hold(const CueDrag::Grip &grip, qint64 atMS);
    void drawFrom(qint64 atMS); ///< A new cue.
    void letGo() { *this = {}; }

    bool isHeld() const { return m_grip || m_draws; }
    bool isDrawing() const { return m_draws; }
    const std::optional<CueDrag::Grip> &grip() const { return m_grip; }
    qint64 heldAt() const { return m_fromMS; } ///< Where it was when it was held. Milliseconds.

    void moveTo(qint64 atMS, const CueTimeline &cues, const CueDrag::Rules &rules);

    const QList<CueTimes> &moved() const { return m_moved; } ///< Cues with other times than they have; may be empty.
    const std::optional<CueTimeline::Room> &drawn() const { return m_drawn; } ///< The new cue; absent without one.

private:
    std::optional<CueDrag::Grip> m_grip;
    bool m_draws = false;
    qint64 m_fromMS = 0;
    QList<CueTimes> m_moved;
    std::optional<CueTimeline::Room> m_drawn;
};
