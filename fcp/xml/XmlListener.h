#pragma once

#include <QByteArray>

#include <libxml/tree.h>

#include <optional>

/// A start tag as the parser hands it over; all of it is gone when the call ends. Text is UTF-8.
class XmlTag
{
public:
    struct Attribute
    {
        const xmlChar *name;   ///< Without its prefix. As long as the parser lives, one address for a name.
        const xmlChar *prefix; ///< Null when it has none.
        QByteArrayView raw;    ///< As the parser has it: an "&" may be written "&#38;".

        bool isNamed(QByteArrayView wanted) const; ///< And has no prefix.
        QByteArray value() const;                  ///< A copy.
    };

    /// `attributes` are five pointers each: name, prefix, namespace, value, the value's end.
    XmlTag(const xmlChar *name, const xmlChar *prefix, const xmlChar *uri, const xmlChar **attributes, int count)
        : m_name(name)
        , m_prefix(prefix)
        , m_uri(uri)
        , m_attributes(attributes)
        , m_count(count)
    {}

    const xmlChar *name() const { return m_name; }       ///< Without its prefix, one address for a name as above.
    bool isPlain() const { return !m_prefix && !m_uri; } ///< Outside any namespace, as FCPXML has its elements.
    bool isNamed(QByteArrayView wanted) const;           ///< And is plain.
    QByteArray shownName() const;                        ///< As the tree has it.

    int count() const { return m_count; } ///< Of the attributes.
    Attribute attribute(int index) const;
    std::optional<QByteArray> value(QByteArrayView wanted) const; ///< Of the attribute of that name without a prefix.

private:
    const xmlChar *m_name;
    const xmlChar *m_prefix;
    const xmlChar *m_uri;
    const xmlChar **m_attributes;
    int m_count;
};

/// Hears of a document while it is parsed, and says what goes into the tree: what needs none takes a fraction of the
/// time and of the memory. Must not throw.
class XmlListener
{
public:
    XmlListener() = default;
    virtual ~XmlListener() = default;
    Q_DISABLE_COPY_MOVE(XmlListener)

    /// An element begins; its tag ends on `line`, from 1. Returns whether it goes into the tree, below `parent`. That
    /// is null for the root, which always does, and inside what stays out, which stays out with it.
    virtual bool begin(const XmlTag &tag, const xmlNode *parent, int line) = 0;

    /// Some of the character data directly inside the innermost open element; `section` for that of a CDATA section.
    virtual void text(QByteArrayView /*text*/, bool /*section*/) {}

    virtual void end() {} ///< The innermost open element ends.
};
