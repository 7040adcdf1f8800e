#include "fcp/FrameRate.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

std::span<const FrameRate> FrameRate::all()
{
    static const std::array rates{
        FrameRate{.label = u"23.976"_s, .numerator = 24'000, .denominator = 1'001},
        FrameRate{.label = u"24"_s, .numerator = 24, .denominator = 1},
        FrameRate{.label = u"25"_s, .numerator = 25, .denominator = 1},
        FrameRate{.label = u"29.97"_s, .numerator = 30'000, .denominator = 1'001},
        FrameRate{.label = u"30"_s, .numerator = 30, .denominator = 1},
        FrameRate{.label = u"50"_s, .numerator = 50, .denominator = 1},
        FrameRate{.label = u"59.94"_s, .numerator = 60'000, .denominator = 1'001},
        FrameRate{.label = u"60"_s, .numerator = 60, .denominator = 1},
    };
    return rates;
}

std::optional<qint64> FrameRate::frame(qint64 milliseconds) const
{
    // In this order: another one rounds some halves the wrong way.
    const double position = double(milliseconds) * double(numerator) / (double(denominator) * 1000.0);
    const double frame = std::round(position);
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(frame >= -limit && frame < limit))
        return std::nullopt;
    return static_cast<qint64>(frame);
}

QByteArray FrameRate::time(qint64 frames) const
{
    qint64 ticks = 0;
    if (__builtin_mul_overflow(frames, denominator, &ticks))
        throw RationalOverflow();
    return QByteArray::number(ticks) + '/' + QByteArray::number(numerator) + 's';
}

FrameRate readFrameRate(JsonReader &json)
{
    FrameRate rate;
    json.readObject({"label", "numerator", "denominator"}, [&](QByteArrayView key) {
        if (key == "label")
            rate.label = json.readText();
        else if (key == "numerator")
            rate.numerator = json.readInteger();
        else if (key == "denominator")
            rate.denominator = json.readInteger();
    });
    return rate;
}

void writeFrameRate(JsonWriter &json, const FrameRate &rate)
{
    json.beginObject();
    json.key("denominator").integer(rate.denominator);
    json.key("label").text(rate.label);
    json.key("numerator").integer(rate.numerator);
    json.endObject();
}
