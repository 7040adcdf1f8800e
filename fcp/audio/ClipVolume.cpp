#include "fcp/audio/ClipVolume.h"

#include "fcp/xml/XmlDocument.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>

namespace ClipVolume {

namespace {

struct Keyframe
{
    double time;  ///< Seconds of the clip's own time. A level needs no exact ones.
    double level; ///< Decibels.
};

std::vector<Keyframe> readKeyframes(const xmlNode *parameter)
{
    std::vector<Keyframe> keyframes;
    for (const xmlNode *const each : Xml::Children(Xml::child(parameter, "keyframeAnimation"))) {
        const auto time = Rational::parseTime(Xml::attribute(each, "time").value_or(QByteArray()));
        const auto level = decibels(Xml::attribute(each, "value").value_or(QByteArray()));
        if (Xml::isElement(each, "keyframe") && time && level)
            keyframes.push_back({.time = time->toDouble(), .level = *level});
    }
    std::stable_sort(keyframes.begin(), keyframes.end(), [](const auto &a, const auto &b) { return a.time < b.time; });
    return keyframes;
}

/// The level that holds longest within `sound`, the louder one of two that hold equally long. A slope counts half for
/// each of its ends.
double longestLevel(const std::vector<Keyframe> &keyframes, const TimeRange &sound)
{
    const double first = sound.begin.toDouble();
    const double last = sound.end ? sound.end->toDouble() : std::numeric_limits<double>::max();
    std::map<double, double> seconds;
    double from = first;
    for (size_t i = 0; i < keyframes.size(); ++i) {
        const double middle = i + 1 < keyframes.size() ? std::midpoint(keyframes[i].time, keyframes[i + 1].time) : last;
        const double to = std::clamp(middle, from, std::max(from, last));
        seconds[keyframes[i].level] += to - from;
        from = to;
    }
    const auto longest = std::max_element(seconds.rbegin(), seconds.rend(),
                                          [](const auto &a, const auto &b) { return a.second < b.second; });
    return longest->first;
}

const xmlNode *amountParameter(const xmlNode *adjustVolume)
{
    for (const xmlNode *const each : Xml::Children(adjustVolume)) {
        if (Xml::isElement(each, "param") && Xml::attribute(each, "name") == "amount" &&
            Xml::attribute(each, "enabled") != "0")
            return each;
    }
    return nullptr;
}

std::optional<double> movingLevel(const xmlNode *parameter, const TimeRange &sound)
{
    const auto keyframes = readKeyframes(parameter);
    if (!keyframes.empty())
        return longestLevel(keyframes, sound);
    return decibels(Xml::attribute(parameter, "value").value_or(QByteArray()));
}

} // namespace

double factor(const xmlNode *adjustVolume, const TimeRange &sound)
{
    std::optional<double> level;
    if (const auto amount = Xml::attribute(adjustVolume, "amount"))
        level = decibels(*amount);
    else if (const xmlNode *const parameter = amountParameter(adjustVolume))
        level = movingLevel(parameter, sound);
    return level ? fromDecibels(*level) : 1;
}

double product(const std::vector<const xmlNode *> &children, const TimeRange &sound)
{
    double result = 1;
    for (const xmlNode *const each : children) {
        if (Xml::isElement(each, "adjust-volume"))
            result = std::min(result * factor(each, sound), std::numeric_limits<double>::max());
    }
    return result;
}

double fromDecibels(double level)
{
    constexpr double loudest = 24;
    constexpr double silence = -96;
    return std::pow(10.0, std::clamp(level, silence, loudest) / 20);
}

std::optional<double> decibels(QByteArrayView text)
{
    text = text.trimmed();
    if (text.endsWith("dB"))
        text.chop(2);
    bool isNumber = false;
    const double level = text.toDouble(&isNumber);
    return isNumber && !std::isnan(level) ? std::optional(level) : std::nullopt;
}

} // namespace ClipVolume
