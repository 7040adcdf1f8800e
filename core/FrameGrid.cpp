#include "core/FrameGrid.h"

#include <cmath>

// In this order of operations, as everywhere where a frame is found: another one rounds some halves the wrong way.

qint64 FrameGrid::frame(qint64 milliseconds) const
{
    return std::llround(double(milliseconds) * double(numerator) / (double(denominator) * 1000.0));
}

qint64 FrameGrid::time(qint64 frame) const
{
    return std::llround(double(frame) * double(denominator) * 1000.0 / double(numerator));
}
