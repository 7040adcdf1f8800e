#include "fcp/xml/XmlDocument.h"

#include "core/ConversionError.h"
#include "fcp/xml/XmlGuard.h"
#include "fcp/xml/XmlParsing.h"

#include <algorithm>
#include <charconv>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

const xmlChar *xmlChars(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

const char *plainChars(const xmlChar *text)
{
    return reinterpret_cast<const char *>(text);
}

/// Names differ in their first letters mostly.
bool isSame(const xmlChar *text, QByteArrayView name)
{
    return !name.isEmpty() && plainChars(text)[0] == name.front() && QByteArrayView(plainChars(text)) == name;
}

} // namespace

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Check &check)
{
    return parse(bytes, entityRefusal, nullptr, nullptr, check);
}

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction &extraction,
                               const Check &check)
{
    return parse(bytes, entityRefusal, &extraction, nullptr, check);
}

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, XmlListener &listener,
                               const Check &check)
{
    return parse(bytes, entityRefusal, nullptr, &listener, check);
}

QByteArray XmlDocument::Extract::attribute(QByteArrayView name) const
{
    const auto found = std::ranges::find(attributes, name, &std::pair<QByteArray, QByteArray>::first);
    return found == attributes.end() ? QByteArray() : found->second;
}

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction *extraction,
                               XmlListener *listener, const Check &check)
{
    if (XmlGuard::mentionsEntity(bytes))
        throw ConversionError(entityRefusal.toString());
    if (bytes.size() > std::numeric_limits<int>::max())
        throw XmlParsing::refusal(u"文件过大。"_s);
    if (XmlGuard::hasOverlongTag(bytes))
        throw XmlParsing::refusal(u"一个元素的属性过多。"_s);
    if (check)
        check();
    return XmlDocument(
        XmlParsing::run(XmlGuard::withoutBlankEnd(bytes), entityRefusal, extraction, listener, check).release());
}

namespace Xml {

bool isElement(const xmlNode *node, QByteArrayView name)
{
    return node->type == XML_ELEMENT_NODE && !node->ns && isSame(node->name, name);
}

QByteArrayView elementName(const xmlNode *node)
{
    return node->type == XML_ELEMENT_NODE && !node->ns ? QByteArrayView(plainChars(node->name)) : QByteArrayView();
}

std::optional<QByteArrayView> attributeView(const xmlNode *element, QByteArrayView name)
{
    for (const xmlAttr *each = element->properties; each; each = each->next) {
        if (each->ns || !isSame(each->name, name))
            continue;
        // One text node, for documents that refer to entities are refused.
        return each->children ? QByteArrayView(plainChars(each->children->content)) : QByteArrayView("");
    }
    return std::nullopt;
}

std::optional<QByteArray> attribute(const xmlNode *element, QByteArrayView name)
{
    const auto view = attributeView(element, name);
    return view ? std::optional(view->toByteArray()) : std::nullopt;
}

std::optional<qint64> integerAttribute(const xmlNode *element, QByteArrayView name)
{
    const auto text = attributeView(element, name);
    return text ? integer(*text) : std::nullopt;
}

std::optional<qint64> integer(QByteArrayView text)
{
    // from_chars takes neither blanks nor a plus, which the form allows once.
    const QByteArrayView digits = text.startsWith('+') && !text.startsWith("+-") ? text.sliced(1) : text;
    qint64 value = 0;
    const auto [stop, error] = std::from_chars(digits.begin(), digits.end(), value);
    return error == std::errc() && stop == digits.end() ? std::optional(value) : std::nullopt;
}

void setAttribute(xmlNode *element, const char *name, const QByteArray &value)
{
    if (!xmlSetNsProp(element, nullptr, xmlChars(name), xmlChars(value.constData())))
        throw std::bad_alloc();
}

void removeAttribute(xmlNode *element, const char *name)
{
    xmlUnsetNsProp(element, nullptr, xmlChars(name));
}

xmlNode *child(const xmlNode *element, QByteArrayView name)
{
    for (xmlNode *const each : Children(element)) {
        if (isElement(each, name))
            return each;
    }
    return nullptr;
}

xmlNode *firstElement(xmlNode *node)
{
    while (node && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

QString excerpt(QByteArrayView value)
{
    constexpr qsizetype longest = 40;
    const QString text = QString::fromUtf8(value).simplified();
    return text.size() > longest ? text.first(longest) + u'…' : text;
}

QString place(const xmlNode *element)
{
    constexpr long lastLine = 65'535; // libxml2 counts no further
    QString text = QString::fromUtf8(elementName(element));
    const QString name = excerpt(attribute(element, "name").value_or(QByteArray()));
    if (!name.isEmpty())
        text += u"“%1”"_s.arg(name);
    const long line = xmlGetLineNo(element);
    return line > 0 && line < lastLine ? u"第 %1 行的 "_s.arg(line) + text : text;
}

xmlNode *nextElement(const xmlNode *element, const xmlNode *root)
{
    if (xmlNode *const inner = firstElement(element->children))
        return inner;
    for (const xmlNode *node = element; node != root; node = node->parent) {
        if (xmlNode *const sibling = firstElement(node->next))
            return sibling;
    }
    return nullptr;
}

} // namespace Xml
