#pragma once

#include "core/FrameGrid.h"

#include <QString>

/// Which part of the timeline is seen in a strip of so many points, and how large. Times are milliseconds, places
/// points from the strip's left edge.
///
/// What is seen lies within 0 and the length, where that is not shorter than the strip; zooming out ends where all of
/// it is seen.
class TimeScale
{
public:
    static constexpr double finest = 1;          ///< Milliseconds a point takes at least: a frame is well seen.
    static constexpr double usual = 12;          ///< The same to begin with: eight seconds in a small window.
    static constexpr qint64 shortestMS = 10'000; ///< What can always be seen, however short the sound is.

    void setWidth(int points);
    void setLength(qint64 ms); ///< Of what there is to be seen.
    int width() const { return m_width; }

    double msPerPoint() const { return m_msPerPoint; }
    double x(qint64 ms) const { return (double(ms) - m_left) / m_msPerPoint; }
    qint64 time(double x) const; ///< Rounded to the nearest; may lie outside the timeline.
    qint64 left() const { return time(0); }
    qint64 right() const { return time(m_width); }

    void zoom(double factor, double x); ///< Above 1: larger. What is at `x` stays there.
    void scroll(double points);         ///< Above 0: to what comes later.
    void centre(qint64 startMS, qint64 endMS);

    /// Goes on by a page when `ms` is not seen, so that it is near the left edge; back likewise. Whether it did.
    bool turnTo(qint64 ms);

    friend bool operator==(const TimeScale &, const TimeScale &) = default;

private:
    void keepWithin();

    int m_width = 1;
    qint64 m_lengthMS = shortestMS;
    double m_msPerPoint = usual;
    double m_left = 0;
};

/// What a ruler over the strip marks.
namespace TimeRuler {

/// Milliseconds between two times that are written, far enough apart for their figures, and between two lines, which
/// part these evenly.
struct Marks
{
    qint64 written = 0;
    qint64 lines = 0;
};

Marks marks(double msPerPoint);

bool showsFrames(double msPerPoint, const FrameGrid &grid); ///< Whether frames are far enough apart for a line each.

/// "1:02" and, where times closer than seconds are written, "1:02.5"; with hours in front where there are some.
QString text(qint64 ms, qint64 writtenMS);

} // namespace TimeRuler
