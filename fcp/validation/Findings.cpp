#include "fcp/validation/Findings.h"

#include "fcp/xml/XmlSource.h"

#include <algorithm>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace {

/// The lines of all elements in which a problem was found. The parser counts no further than 65,535.
std::unordered_map<const xmlNode *, qint64> lines(QByteArrayView bytes, const XmlDocument &document,
                                                  std::unordered_map<const xmlNode *, qint64> wanted)
{
    const XmlSource source(bytes.toByteArray());
    size_t number = 0;
    qsizetype at = 0;
    qint64 line = 1;
    for (const xmlNode *element = document.root(); element && number < source.count();
         element = Xml::nextElement(element, document.root()), ++number) {
        const auto found = wanted.find(element);
        if (found == wanted.end())
            continue;
        const qsizetype begin = source.element(number).begin;
        line += std::count(bytes.begin() + at, bytes.begin() + begin, '\n');
        at = begin;
        found->second = line;
    }
    return wanted;
}

bool isUtf8(const XmlDocument &document)
{
    const xmlChar *const encoding = document.get()->encoding;
    return !encoding || xmlStrcasecmp(encoding, reinterpret_cast<const xmlChar *>("UTF-8")) == 0;
}

} // namespace

void Findings::add(const xmlNode *element, const QString &rule, Problem::Severity severity, const QString &message,
                   const QString &fix)
{
    if (qsizetype(m_found.size()) > DocumentCheck::mostProblems)
        return;
    m_found.push_back({.element = element,
                       .problem = {.line = xmlGetLineNo(element),
                                   .element = QString::fromUtf8(reinterpret_cast<const char *>(element->name)),
                                   .rule = rule,
                                   .severity = severity,
                                   .message = message,
                                   .fix = fix}});
}

QList<Problem> Findings::finish(QByteArrayView bytes, const XmlDocument &document)
{
    if (!m_found.empty() && isUtf8(document)) {
        std::unordered_map<const xmlNode *, qint64> wanted;
        for (const Found &each : m_found)
            wanted.emplace(each.element, each.problem.line);
        wanted = lines(bytes, document, std::move(wanted));
        for (Found &each : m_found)
            each.problem.line = wanted.at(each.element);
    }
    QList<Problem> problems;
    for (const Found &each : m_found)
        problems.append(each.problem);
    std::ranges::stable_sort(problems, {}, &Problem::line);
    return problems;
}
