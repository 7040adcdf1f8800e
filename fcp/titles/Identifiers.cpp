#include "fcp/titles/Identifiers.h"

qint64 Identifiers::Counter::next(qint64 count)
{
    qint64 first = m_last + 1;
    for (qint64 number = first; number < first + count; ++number) {
        if (m_taken.contains(number))
            first = number + 1;
    }
    m_last = first + count - 1;
    return first;
}

Identifiers::Identifiers(const XmlDocument &document)
{
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        if (const auto id = Xml::attribute(element, "id"))
            m_used.insert(*id);
    }
}

Identifiers::Counter Identifiers::counter(QByteArrayView prefix) const
{
    QSet<qint64> taken;
    for (const QByteArray &id : m_used) {
        if (!id.startsWith(prefix))
            continue;
        const QByteArray digits = id.sliced(prefix.size());
        const qint64 number = digits.toLongLong();
        // "007" and "+7" are other ids than 7.
        if (QByteArray::number(number) == digits)
            taken.insert(number);
    }
    return Counter(std::move(taken));
}
