#include "fcp/ConformRate.h"

#include "fcp/XmlDocument.h"

#include <array>

namespace ConformRate {

namespace {

struct SourceRate
{
    QByteArrayView name; ///< As "srcFrameRate" has it.
    Rational rate;       ///< Frames per second.
};

/// The values that the published document type allows.
std::optional<Rational> sourceRate(QByteArrayView name)
{
    static const std::array rates{
        SourceRate{"23.98", {24'000, 1'001}},
        SourceRate{"24", 24},
        SourceRate{"25", 25},
        SourceRate{"29.97", {30'000, 1'001}},
        SourceRate{"30", 30},
        SourceRate{"47.95", {48'000, 1'001}},
        SourceRate{"48", 48},
        SourceRate{"50", 50},
        SourceRate{"59.94", {60'000, 1'001}},
        SourceRate{"60", 60},
        SourceRate{"90", 90},
        SourceRate{"100", 100},
        SourceRate{"119.88", {120'000, 1'001}},
        SourceRate{"120", 120},
    };
    for (const SourceRate &each : rates) {
        if (each.name == name)
            return each.rate;
    }
    return std::nullopt;
}

bool isFilmLike(const Rational &rate)
{
    return rate == Rational(24) || rate == Rational(25) || rate == Rational(24'000, 1'001);
}

bool isNtsc(const Rational &rate)
{
    return rate.denominator() != 1;
}

} // namespace

Rational pace(const xmlNode *clip, const Rational &frameDuration)
{
    const xmlNode *const conform = Xml::child(clip, "conform-rate");
    if (!conform || Xml::attribute(conform, "scaleEnabled") == "0")
        return 1;
    const auto source = sourceRate(Xml::attribute(conform, "srcFrameRate").value_or(QByteArray()));
    if (!source)
        return 1;
    const Rational timeline = Rational(1) / frameDuration;
    if (isFilmLike(*source) && isFilmLike(timeline))
        return timeline / *source;
    if (isNtsc(*source) == isNtsc(timeline))
        return 1;
    return isNtsc(*source) ? Rational(1'001, 1'000) : Rational(1'000, 1'001);
}

} // namespace ConformRate
