#pragma once

#include <QtGlobal>

/// The frames of a rate as the points at which a cue may begin or end: numerator / denominator frames a second, both
/// above 0. Thirty a second unless said.
struct FrameGrid
{
    qint64 numerator = 30;
    qint64 denominator = 1;

    qint64 frame(qint64 milliseconds) const; ///< The nearest frame, halves away from zero.
    qint64 time(qint64 frame) const;         ///< Milliseconds, rounded to the nearest; frame() brings the frame back.
    qint64 snapped(qint64 milliseconds) const { return time(frame(milliseconds)); }

    friend bool operator==(const FrameGrid &, const FrameGrid &) = default;
};
