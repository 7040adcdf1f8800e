#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

/// The bytes of a document and where its elements stand in them, so that a change leaves every other byte alone.
///
/// Elements are numbered from 0 in document order, as Xml::nextElement visits them. Positions count bytes of the
/// document as it was given, whatever has been changed meanwhile.
class XmlSource
{
public:
    /// ```
    ///   <text-style ref="ts1">你好</text-style>
    ///   begin                 contentBegin
    ///                             contentEnd   end
    /// ```
    /// Of an element without content, `<text/>`, all but `begin` are the same.
    struct Element
    {
        qsizetype begin;
        qsizetype contentBegin;
        qsizetype contentEnd;
        qsizetype end;
    };

    struct Range
    {
        qsizetype begin;
        qsizetype end;
    };

    /// `utf8` is a well-formed document in UTF-8: XmlDocument took it.
    explicit XmlSource(QByteArray utf8);

    size_t count() const { return m_elements.size(); }
    const Element &element(size_t number) const { return m_elements[number]; }

    /// The value of an attribute, without its quotes.
    std::optional<Range> attribute(size_t number, QByteArrayView name) const;

    QByteArrayView bytes(const Range &range) const;

    qsizetype line(qsizetype position) const; ///< The line of a position, from 1.

    /// Puts `bytes` in a range's place. Ranges must not overlap; at one position, what comes first stands first.
    void replace(const Range &range, QByteArray bytes);

    /// The document with all changes. Without any it is what was given.
    QByteArray changed() const;

private:
    struct Change
    {
        Range range;
        QByteArray bytes;
    };

    QByteArray m_bytes;
    std::vector<Element> m_elements;
    std::vector<Change> m_changes;
};
