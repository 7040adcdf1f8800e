#pragma once

#include "fcp/XmlDocument.h"

#include <QHash>
#include <QSet>

/// Hands out "id" values that a document does not use yet: a prefix and a number counted from 1. They depend only on
/// the ids that the document already has.
class Identifiers
{
public:
    explicit Identifiers(const XmlDocument &document);

    /// The number after `prefix` of the next free id, which is then taken.
    qint64 next(const QByteArray &prefix);

private:
    QSet<QByteArray> m_used;
    QHash<QByteArray, qint64> m_last; ///< The number handed out last for a prefix.
};
