#pragma once

#include "fcp/xml/XmlListener.h"

#include <deque>
#include <span>
#include <vector>

/// The elements of a document that anything beyond its rules is known of, with the attributes that tell it: a tenth of
/// what a tree takes. Made while a document is parsed, and valid as long as that document.
class DocumentSketch final : public XmlListener
{
public:
    struct Attribute
    {
        QByteArrayView name;
        QByteArrayView value;
    };

    class Element
    {
    public:
        QByteArrayView name() const { return m_name; } ///< As a tree has it.
        size_t number() const { return m_number; }     ///< Among all elements of the document, from 0.
        int line() const { return m_line; }            ///< On which its tag ends, as the parser counts.
        const Element *parent() const { return m_parent; }
        const QByteArray &text() const { return m_text; } ///< Directly inside it; only for fields and runs of captions.

        /// Whether it is one of those, most of a document, in which nothing is looked for but the text of captions.
        bool isLeaf() const;

        bool is(QByteArrayView name) const { return m_isPlain && m_name == name; } ///< And in no namespace.
        std::optional<QByteArrayView> attribute(QByteArrayView name) const;
        const Element *child(QByteArrayView name) const; ///< The first of that name, null when there is none.

        const Element *firstChild() const { return m_firstChild; }
        const Element *next() const { return m_next; } ///< The sibling that follows.

    private:
        friend class DocumentSketch;

        QByteArrayView m_name;
        std::span<const Attribute> m_attributes;
        const Element *m_parent = nullptr;
        const Element *m_firstChild = nullptr;
        const Element *m_next = nullptr;
        size_t m_number = 0;
        QByteArray m_text;
        int m_line = 0;
        bool m_isPlain = true;
    };

    bool begin(const XmlTag &tag, const xmlNode *parent, int line) override;
    void text(QByteArrayView text, bool section) override;
    void end() override;

    const Element &root() const { return m_elements.front(); }
    const std::deque<Element> &elements() const { return m_elements; } ///< All, in document order.

private:
    /// Values that stay where they are, each row of them in one piece.
    template <class T>
    class Store
    {
    public:
        std::span<const T> add(std::span<const T> row);

    private:
        std::vector<std::vector<T>> m_blocks;
    };

    /// An element that has begun and has not ended.
    struct Open
    {
        Element *element = nullptr; ///< Null for one that is left out, with all that stands in it.
        Element *last = nullptr;    ///< Its last child so far.
        bool keepsText = false;
    };

    static bool isLookedAt(const XmlTag &tag, const Open &parent);
    std::span<const Attribute> kept(const XmlTag &tag);
    QByteArrayView kept(QByteArrayView text);

    std::deque<Element> m_elements;
    Store<Attribute> m_attributes;
    Store<char> m_values;
    std::vector<Attribute> m_row; ///< Of the element that begins.
    std::vector<Open> m_open;
    size_t m_count = 0; ///< Of the elements so far.
};
