#pragma once

#include "fcp/titles/Identifiers.h"
#include "fcp/xml/XmlDocument.h"

#include <QString>

/// Further titles that look like one that stands in a document already.
class TitleCopy
{
public:
    struct Place
    {
        QByteArray offset; ///< As attributes have them.
        QByteArray duration;
    };

    explicit TitleCopy(const XmlDocument &document);

    /// Whether a title or caption holds nothing but its text and its look: nothing hangs on it or marks it.
    static bool isPlain(const xmlNode *element);

    /// The element `xml`, which isPlain, with another text and place, and with ids of its own.
    QByteArray copy(const QByteArray &xml, const Place &place, const QString &text);

private:
    Identifiers::Counter m_styles;
};
