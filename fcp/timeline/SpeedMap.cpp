#include "fcp/timeline/SpeedMap.h"

#include "fcp/xml/XmlDocument.h"

#include <vector>

namespace {

struct Point
{
    Rational time;
    Rational content;
};

std::optional<Rational> readTime(const xmlNode *element, QByteArrayView attribute)
{
    const auto text = Xml::attribute(element, attribute);
    return text ? Rational::parseTime(*text) : std::nullopt;
}

} // namespace

std::optional<SpeedMap> SpeedMap::read(const xmlNode *timeMap)
{
    std::vector<Point> points;
    for (const xmlNode *const child : Xml::Children(timeMap)) {
        const auto time = readTime(child, "time");
        const auto content = readTime(child, "value");
        if (!time || !content)
            return std::nullopt;
        points.push_back({.time = *time, .content = *content});
    }
    if (points.size() < 2 || points[1].time <= points[0].time)
        return std::nullopt;
    const Point &first = points[0];
    const Rational speed = (points[1].content - first.content) / (points[1].time - first.time);
    if (speed <= 0)
        return std::nullopt;
    for (const Point &each : points) {
        if (each.content - first.content != (each.time - first.time) * speed)
            return std::nullopt;
    }
    return SpeedMap{.time = first.time, .content = first.content, .speed = speed};
}
