#include "fcp/xml/XmlSource.h"

#include <algorithm>

namespace {

bool isBlank(char each)
{
    return each == ' ' || each == '\t' || each == '\n' || each == '\r';
}

/// Reads on from markup to markup.
class Scanner
{
public:
    explicit Scanner(QByteArrayView bytes)
        : m_bytes(bytes)
    {}

    /// Goes to the next start or end tag. False at the end of the document.
    bool next()
    {
        while (true) {
            m_begin = m_bytes.indexOf('<', m_at);
            if (m_begin < 0)
                return false;
            const QByteArrayView rest = m_bytes.sliced(m_begin);
            if (rest.startsWith("<!--"))
                skipTo("-->");
            else if (rest.startsWith("<![CDATA["))
                skipTo("]]>");
            else if (rest.startsWith("<?"))
                skipTo("?>");
            else if (rest.startsWith("<!"))
                skipDoctype();
            else
                break;
        }
        m_at = tagEnd(m_begin);
        return true;
    }

    qsizetype begin() const { return m_begin; }
    qsizetype end() const { return m_at; }
    bool isEndTag() const { return m_bytes[m_begin + 1] == '/'; }
    bool isEmptyTag() const { return m_bytes[m_at - 2] == '/'; }

private:
    void skipTo(QByteArrayView closing)
    {
        const qsizetype at = m_bytes.indexOf(closing, m_begin + 2);
        m_at = at < 0 ? m_bytes.size() : at + closing.size();
    }

    /// Behind the > of a tag; one inside an attribute's value does not end it.
    qsizetype tagEnd(qsizetype at) const
    {
        char quote = 0;
        for (; at < m_bytes.size(); ++at) {
            const char each = m_bytes[at];
            if (quote != 0)
                quote = each == quote ? char(0) : quote;
            else if (each == '"' || each == '\'')
                quote = each;
            else if (each == '>')
                return at + 1;
        }
        return at;
    }

    /// A document type may hold declarations in brackets, and comments with anything in them.
    void skipDoctype()
    {
        int depth = 0;
        char quote = 0;
        for (m_at = m_begin + 1; m_at < m_bytes.size(); ++m_at) {
            const char each = m_bytes[m_at];
            if (quote != 0) {
                quote = each == quote ? char(0) : quote;
            } else if (m_bytes.sliced(m_at).startsWith("<!--")) {
                const qsizetype close = m_bytes.indexOf("-->", m_at + 4);
                m_at = close < 0 ? m_bytes.size() : close + 2;
            } else if (each == '"' || each == '\'') {
                quote = each;
            } else if (each == '<') {
                ++depth;
            } else if (each == '>' && depth-- == 0) {
                ++m_at;
                return;
            }
        }
    }

    QByteArrayView m_bytes;
    qsizetype m_begin = 0;
    qsizetype m_at = 0;
};

} // namespace

XmlSource::XmlSource(QByteArray utf8)
    : m_bytes(std::move(utf8))
{
    std::vector<size_t> open;
    Scanner tag(m_bytes);
    while (tag.next()) {
        if (tag.isEndTag()) {
            if (open.empty())
                return;
            m_elements[open.back()].contentEnd = tag.begin();
            m_elements[open.back()].end = tag.end();
            open.pop_back();
        } else {
            const qsizetype end = tag.end();
            if (!tag.isEmptyTag())
                open.push_back(m_elements.size());
            m_elements.push_back({.begin = tag.begin(), .contentBegin = end, .contentEnd = end, .end = end});
        }
    }
}

std::optional<XmlSource::Range> XmlSource::attribute(size_t number, QByteArrayView name) const
{
    const Element &element = m_elements[number];
    qsizetype at = element.begin + 1;
    const auto skip = [&](auto &&while_) {
        while (at < element.contentBegin && while_(m_bytes[at]))
            ++at;
    };
    skip([](char each) { return !isBlank(each) && each != '>' && each != '/'; });
    while (true) {
        skip(isBlank);
        const qsizetype begin = at;
        skip([](char each) { return !isBlank(each) && each != '=' && each != '>' && each != '/'; });
        if (at == begin)
            return std::nullopt;
        const QByteArrayView found = QByteArrayView(m_bytes).sliced(begin, at - begin);
        skip([](char each) { return each != '"' && each != '\''; });
        const char quote = m_bytes[at++];
        const qsizetype value = at;
        skip([&](char each) { return each != quote; });
        if (found == name)
            return Range{.begin = value, .end = at};
        ++at;
    }
}

QByteArrayView XmlSource::bytes(const Range &range) const
{
    return QByteArrayView(m_bytes).sliced(range.begin, range.end - range.begin);
}

qsizetype XmlSource::line(qsizetype position) const
{
    return std::count(m_bytes.begin(), m_bytes.begin() + position, '\n') + 1;
}

void XmlSource::replace(const Range &range, QByteArray bytes)
{
    m_changes.push_back({.range = range, .bytes = std::move(bytes)});
}

QByteArray XmlSource::changed() const
{
    if (m_changes.empty())
        return m_bytes;
    std::vector<const Change *> order;
    for (const Change &each : m_changes)
        order.push_back(&each);
    std::ranges::stable_sort(order, {}, [](const Change *each) { return each->range.begin; });
    QByteArray result;
    qsizetype at = 0;
    for (const Change *const each : order) {
        result += QByteArrayView(m_bytes).sliced(at, each->range.begin - at);
        result += each->bytes;
        at = each->range.end;
    }
    return result + m_bytes.sliced(at);
}
