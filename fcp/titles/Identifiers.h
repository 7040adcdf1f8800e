#pragma once

#include "fcp/xml/XmlDocument.h"

#include <QSet>

/// The "id" values that a document uses, and counters that pass them by.
class Identifiers
{
public:
    /// Counts 1, 2, 3 … and leaves out the numbers with which the prefix is an id already.
    class Counter
    {
    public:
        explicit Counter(QSet<qint64> taken)
            : m_taken(std::move(taken))
        {}

        /// The first of `count` numbers in a row.
        qint64 next(qint64 count = 1);

    private:
        QSet<qint64> m_taken;
        qint64 m_last = 0;
    };

    explicit Identifiers(const XmlDocument &document);

    /// A new counter for ids of `prefix` and a number. What it hands out depends only on the document.
    Counter counter(QByteArrayView prefix) const;

private:
    QSet<QByteArray> m_used;
};
