#pragma once

#include "core/CueShift.h"
#include "fcp/FrameRate.h"

#include <QString>

#include <optional>

/// Times of cues as people type them. (SRT::stamp writes them.)
namespace CueTime {

/// Reads a time in any of the ways it is typed:
///
/// | typed | means |
/// |---|---|
/// | 00:01:02,500 or 00:01:02.5 | hours, minutes, seconds |
/// | 1:02.5 | minutes, seconds |
/// | 62.5 | seconds |
/// | 00:01:02:12 | the same and frames, counted on the grid of `rate` |
/// | 12f or 12帧 | frames |
///
/// Full-width digits and marks count as their narrow forms. Where a larger unit stands before, minutes and seconds are
/// below 60. More decimals than three are rounded. In milliseconds. Absent when it is no time.
std::optional<qint64> parse(QStringView typed, const FrameRate &rate);

/// What a number alone counts.
enum class Unit
{
    seconds,
    frames
};

/// Reads how far times are to go: a sign or none, and a time as parse() reads it. A number alone counts `unit`. What
/// names frames ("-12f", "00:00:01:12") goes by frames of `rate`, anything else by milliseconds. Absent when it is
/// none.
std::optional<CueShift::Distance> parseDistance(QStringView typed, const FrameRate &rate, Unit unit);

} // namespace CueTime
