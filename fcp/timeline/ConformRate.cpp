#include "fcp/timeline/ConformRate.h"

#include "fcp/xml/XmlDocument.h"

#include <array>

namespace ConformRate {

namespace {

struct SourceRate
{
    QByteArrayView name; ///< As "srcFrameRate" has it.
    Rational rate;       ///< Frames per second.
};

/// The values that the published document type allows.
std::optional<Rational> namedRate(QByteArrayView name)
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
    const auto source = conform ? sourceRate(conform) : std::nullopt;
    return source ? pace(*source, frameDuration) : Rational(1);
}

std::optional<Rational> sourceRate(const xmlNode *conformRate)
{
    if (Xml::attribute(conformRate, "scaleEnabled") == "0")
        return std::nullopt;
    return namedRate(Xml::attribute(conformRate, "srcFrameRate").value_or(QByteArray()));
}

Rational pace(const Rational &sourceRate, const Rational &frameDuration)
{
    const Rational timeline = Rational(1) / frameDuration;
    if (isFilmLike(sourceRate) && isFilmLike(timeline))
        return timeline / sourceRate;
    if (isNtsc(sourceRate) == isNtsc(timeline))
        return 1;
    return isNtsc(sourceRate) ? Rational(1'001, 1'000) : Rational(1'000, 1'001);
}

} // namespace ConformRate
