#pragma once

#include "fcp/Rational.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <span>

class JsonReader;
class JsonWriter;

/// A frame grid: numerator / denominator frames per second. One frame lasts denominator / numerator seconds.
struct FrameRate
{
    QString label;          ///< What the user sees, "29.97".
    qint64 numerator = 0;   ///< Above 0 in a usable rate.
    qint64 denominator = 0; ///< Above 0 in a usable rate.

    /// The eight rates that we support, in the order of the picker: 23.976, 24, 25, 29.97, 30, 50, 59.94, 60.
    static std::span<const FrameRate> all();

    /// The frame nearest to a time: milliseconds × numerator ÷ (denominator × 1000), halves away from zero. Absent when
    /// no 64-bit integer holds it.
    std::optional<qint64> frame(qint64 milliseconds) const;

    /// The time of a frame count as FCPXML writes it, never reduced: "1001/24000s", "90/30s".
    /// @throws RationalOverflow when frames × denominator exceeds 64 bits.
    QByteArray time(qint64 frames) const;

    /// Seconds that one frame lasts.
    Rational frameDuration() const { return {denominator, numerator}; }

    friend bool operator==(const FrameRate &, const FrameRate &) = default;
};

/// Reads {"denominator", "label", "numerator"}, all required. @throws PlatformError naming the key path.
FrameRate readFrameRate(JsonReader &json);
void writeFrameRate(JsonWriter &json, const FrameRate &rate);
