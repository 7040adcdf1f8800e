#include "fcp/Identifiers.h"

Identifiers::Identifiers(const XmlDocument &document)
{
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        if (const auto id = Xml::attribute(element, "id"))
            m_used.insert(*id);
    }
}

qint64 Identifiers::next(const QByteArray &prefix)
{
    qint64 &number = m_last[prefix];
    do
        ++number;
    while (m_used.contains(prefix + QByteArray::number(number)));
    return number;
}
