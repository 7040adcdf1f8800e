#pragma once

#include "core/Check.h"

#include <QByteArray>
#include <QString>

#include <libxml/tree.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class XmlListener;

/// One XML document in memory, the owner of its nodes. Moved, never copied.
class XmlDocument
{
public:
    /// Parses a whole document in any encoding that libxml2 knows. Nothing outside the bytes is ever loaded, and no
    /// entity is expanded: a document that declares one, or refers to one that is not predefined, is refused.
    /// @throws ConversionError `entityRefusal` for such a document, and when the bytes, read as text, contain
    /// "<!ENTITY".
    /// @throws PlatformError with the line and libxml2's words when the document is not well-formed; and when it has a
    /// tag of more than 250 attributes, or defaults for attributes, with which a small file could keep the parser busy
    /// for hours.
    static XmlDocument parse(QByteArrayView bytes, QStringView entityRefusal, const Check &check = {});

    /// An element that was taken out of a document, with nothing inside but what is said here.
    struct Extract
    {
        size_t wanted = 0;                                         ///< Which of the wanted it is.
        xmlNode *parent;                                           ///< In the rest of the document.
        std::vector<std::pair<QByteArray, QByteArray>> attributes; ///< Names and values, in document order.
        QByteArray text;                                           ///< All character data inside its "text" elements.

        QByteArray attribute(QByteArrayView name) const; ///< Empty when absent.
    };

    /// By what an element that is to be taken out is known.
    struct Wanted
    {
        QByteArray element = {};                                        ///< Its name.
        std::vector<std::pair<QByteArray, QByteArray>> attributes = {}; ///< Names and values that it must have.
    };

    /// Which elements are to be taken out, and who takes them, in document order.
    struct Extraction
    {
        std::vector<Wanted> wanted;
        std::function<void(Extract)> take = {}; ///< Must not throw.
    };

    /// The same without the elements that `extraction` takes: a hundred thousand of them then need no tree.
    static XmlDocument parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction &extraction,
                             const Check &check = {});

    /// The same of what `listener`, which hears of everything, wants in the tree.
    static XmlDocument parse(QByteArrayView bytes, QStringView entityRefusal, XmlListener &listener,
                             const Check &check = {});

    xmlDoc *get() const { return m_document.get(); }
    xmlNode *root() const { return xmlDocGetRootElement(m_document.get()); }

private:
    struct Free
    {
        void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
    };

    static XmlDocument parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction *extraction,
                             XmlListener *listener, const Check &check);

    explicit XmlDocument(xmlDoc *document)
        : m_document(document)
    {}

    std::unique_ptr<xmlDoc, Free> m_document;
};

/// What our readers ask of libxml2's nodes. Names and values are UTF-8; names are those of elements and attributes
/// outside any namespace, as FCPXML has them.
namespace Xml {

bool isElement(const xmlNode *node, QByteArrayView name);

/// The element's name, empty for any other node.
QByteArrayView elementName(const xmlNode *node);

std::optional<QByteArray> attribute(const xmlNode *element, QByteArrayView name);

/// The same without a copy: valid as long as the attribute stays as it is.
std::optional<QByteArrayView> attributeView(const xmlNode *element, QByteArrayView name);

/// The attribute as a decimal integer: an optional sign and digits, within 64 bits. Absent when it is missing or
/// anything else.
std::optional<qint64> integerAttribute(const xmlNode *element, QByteArrayView name);
std::optional<qint64> integer(QByteArrayView text); ///< The same of a text.

void setAttribute(xmlNode *element, const char *name, const QByteArray &value);
void removeAttribute(xmlNode *element, const char *name);

/// The first child element of that name, null when there is none.
xmlNode *child(const xmlNode *element, QByteArrayView name);

/// The first element among `node`, which may be null, and the siblings after it.
xmlNode *firstElement(xmlNode *node);

/// The element children of a node, in document order: `for (xmlNode *clip : Xml::Children(spine))`.
class Children
{
public:
    explicit Children(const xmlNode *parent)
        : m_first(parent ? firstElement(parent->children) : nullptr)
    {}

    struct Iterator
    {
        xmlNode *node;
        xmlNode *operator*() const { return node; }
        Iterator &operator++()
        {
            node = firstElement(node->next);
            return *this;
        }
        bool operator==(const Iterator &) const = default;
    };

    Iterator begin() const { return {m_first}; }
    static Iterator end() { return {nullptr}; }

private:
    xmlNode *m_first;
};

/// A value from a document in a line for a person: blanks simplified, cut when it is long.
QString excerpt(QByteArrayView value);

/// Which element it is, for a person who looks for it: "第 12 行的 asset-clip“采访”". The line is left out where it is
/// not known.
QString place(const xmlNode *element);

/// The element that follows `element` in document order within `root`, null after the last one. Needs no stack, so that
/// depth costs nothing.
xmlNode *nextElement(const xmlNode *element, const xmlNode *root);

} // namespace Xml
