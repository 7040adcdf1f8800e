#include "app/Lintora/sound/StripGesture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// A border near a place.
struct Border
{
    CueDrag::Grip grip;
    double distance = std::numeric_limits<double>::max(); ///< Points.
};

/// The nearer border of a cue, when it is within reach from outside, or from inside in its outer third.
std::optional<Border> borderNear(const Subtitle &cue, qsizetype index, const TimeScale &scale, double x)
{
    const double start = scale.x(cue.start);
    const double end = scale.x(cue.end);
    const bool isStart = std::abs(x - start) <= std::abs(x - end);
    const double distance = std::abs(x - (isStart ? start : end));
    const bool isInside = x > start && x < end;
    if (distance > (isInside ? std::min(StripGesture::reach, (end - start) / 3) : StripGesture::reach))
        return std::nullopt;
    return Border{.grip = {.cue = index, .part = isStart ? CueDrag::Part::start : CueDrag::Part::end},
                  .distance = distance};
}

} // namespace

std::optional<CueDrag::Grip> StripGesture::at(const CueTimeline &cues, const TimeScale &scale, double x,
                                              const FrameGrid &grid, bool single, std::optional<qsizetype> preferred)
{
    std::optional<Border> nearest;
    std::optional<qsizetype> showing;
    for (const qsizetype index : cues.between(scale.time(x - reach), scale.time(x + reach) + 1)) {
        const Subtitle &cue = cues.items().at(index);
        const bool isFound = showing && showing == preferred;
        if (!isFound && scale.x(cue.start) <= x && x < scale.x(cue.end))
            showing = index;
        std::optional<Border> border = borderNear(cue, index, scale, x);
        if (!border)
            continue;
        // Where two lie on each other, the side of the pointer tells which is meant.
        const bool isOnItsSide = (border->grip.part == CueDrag::Part::start) == (x >= scale.x(cue.start));
        border->distance += (isOnItsSide ? 0 : 0.5) + (index == preferred ? 0 : 0.25);
        if (!nearest || border->distance < nearest->distance)
            nearest = border;
    }
    if (nearest && !single) {
        const auto joint = nearest->grip.part == CueDrag::Part::start
                               ? CueDrag::jointAtStart(cues, nearest->grip.cue, grid)
                               : CueDrag::jointAtEnd(cues, nearest->grip.cue, grid);
        return joint ? joint : nearest->grip;
    }
    if (nearest)
        return nearest->grip;
    return showing ? std::optional(CueDrag::Grip{.cue = *showing}) : std::nullopt;
}

void StripGesture::hold(const CueDrag::Grip &grip, qint64 atMS)
{
    letGo();
    m_grip = grip;
    m_fromMS = atMS;
}

void StripGesture::drawFrom(qint64 atMS)
{
    letGo();
    m_draws = true;
    m_fromMS = atMS;
}

void StripGesture::moveTo(qint64 atMS, const CueTimeline &cues, const CueDrag::Rules &rules)
{
    if (m_draws)
        m_drawn = CueDrag::drawn(cues, m_fromMS, atMS, rules);
    if (!m_grip)
        return;
    m_moved = CueDrag::dragged(cues, *m_grip, atMS - m_fromMS, rules);
    m_moved.removeIf([&](const CueTimes &times) {
        const Subtitle &cue = cues.items().at(times.cue);
        return cue.start == times.start && cue.end == times.end;
    });
}
