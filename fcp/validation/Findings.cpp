#include "fcp/validation/Findings.h"

#include "fcp/xml/XmlSource.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Where lines cannot be looked up, they are told no further than trees count them.
constexpr int lastLine = 65'535;

bool isUtf8(const XmlDocument &document)
{
    const xmlChar *const encoding = document.get()->encoding;
    return !encoding || xmlStrcasecmp(encoding, reinterpret_cast<const xmlChar *>("UTF-8")) == 0;
}

} // namespace

Findings::Place Findings::placeOf(const DocumentSketch::Element &element)
{
    return {.number = element.number(), .name = element.name().toByteArray(), .line = element.line()};
}

void Findings::add(const Place &place, const QString &rule, Problem::Severity severity, const QString &message,
                   const QString &fix)
{
    if (qsizetype(m_found.size()) > DocumentCheck::mostProblems)
        return;
    m_found.push_back({.number = place.number,
                       .problem = {.line = std::min(place.line, lastLine),
                                   .element = QString::fromUtf8(place.name),
                                   .rule = rule,
                                   .severity = severity,
                                   .message = message,
                                   .fix = fix}});
}

/// The parser tells the line on which a tag ends; what people look for is the one on which it begins.
void Findings::findLines(QByteArrayView bytes)
{
    std::vector<Found *> order;
    for (Found &each : m_found)
        order.push_back(&each);
    std::ranges::sort(order, {}, &Found::number);
    const XmlSource source(bytes.toByteArray());
    qsizetype at = 0;
    qint64 line = 1;
    for (Found *const each : order) {
        if (each->number >= source.count())
            return;
        const qsizetype begin = source.element(each->number).begin;
        line += std::count(bytes.begin() + at, bytes.begin() + begin, '\n');
        at = begin;
        each->problem.line = line;
    }
}

QList<Problem> Findings::finish(QByteArrayView bytes, const XmlDocument &document)
{
    if (!m_found.empty() && isUtf8(document))
        findLines(bytes);
    QList<Problem> problems;
    for (const Found &each : m_found)
        problems.append(each.problem);
    std::ranges::stable_sort(problems, {}, &Problem::line);
    return problems;
}
