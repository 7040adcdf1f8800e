#include "fcp/xml/XmlListener.h"

namespace {

const char *chars(const xmlChar *text)
{
    return reinterpret_cast<const char *>(text);
}

} // namespace

bool XmlTag::Attribute::isNamed(QByteArrayView wanted) const
{
    return !prefix && QByteArrayView(chars(name)) == wanted;
}

// The one character that the parser leaves to whoever makes the tree: a bare one never stands in a value.
QByteArray XmlTag::Attribute::value() const
{
    return raw.toByteArray().replace("&#38;", "&");
}

bool XmlTag::isNamed(QByteArrayView wanted) const
{
    return isPlain() && QByteArrayView(chars(m_name)) == wanted;
}

QByteArray XmlTag::shownName() const
{
    const QByteArray name(chars(m_name));
    // A prefix that stands for no namespace is a part of the name.
    return m_prefix && !m_uri ? chars(m_prefix) + (':' + name) : name;
}

XmlTag::Attribute XmlTag::attribute(int index) const
{
    const xmlChar **const each = m_attributes + ptrdiff_t(index) * 5;
    return {.name = each[0], .prefix = each[1], .raw = QByteArrayView(chars(each[3]), each[4] - each[3])};
}

std::optional<QByteArray> XmlTag::value(QByteArrayView wanted) const
{
    for (int i = 0; i < m_count; ++i) {
        if (const Attribute each = attribute(i); each.isNamed(wanted))
            return each.value();
    }
    return std::nullopt;
}
