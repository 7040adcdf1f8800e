#include "fcp/XmlDocument.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

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

/// `text` as UTF-16 or UTF-32 would store it, the low byte at `position` of each `width` bytes.
QByteArray widened(QByteArrayView text, int width, int position)
{
    QByteArray result(text.size() * width, '\0');
    for (qsizetype i = 0; i < text.size(); ++i)
        result[i * width + position] = text[i];
    return result;
}

bool mentionsEntity(QByteArrayView bytes)
{
    static constexpr QByteArrayView declaration = "<!ENTITY";
    if (bytes.contains(declaration))
        return true;
    // Only texts that are not one byte a character hold zeros.
    return bytes.contains('\0') &&
           (bytes.contains(widened(declaration, 2, 0)) || bytes.contains(widened(declaration, 2, 1)) ||
            bytes.contains(widened(declaration, 4, 0)) || bytes.contains(widened(declaration, 4, 3)));
}

void refuseEntity(void *context, const xmlChar * /*name*/, int /*type*/, const xmlChar * /*publicId*/,
                  const xmlChar * /*systemId*/, xmlChar * /*content*/)
{
    auto *const parser = static_cast<xmlParserCtxt *>(context);
    *static_cast<bool *>(parser->_private) = true;
    xmlStopParser(parser);
}

/// Errors of character decoders go to standard error, past the parser's own handling, unless somebody else takes them.
class SilentErrors
{
public:
    SilentErrors() { xmlSetStructuredErrorFunc(nullptr, ignore); }
    ~SilentErrors() { xmlSetStructuredErrorFunc(m_context, m_handler); }
    Q_DISABLE_COPY_MOVE(SilentErrors)

private:
    static void ignore(void * /*context*/, xmlError * /*error*/) {}

    void *m_context = xmlStructuredErrorContext;
    xmlStructuredErrorFunc m_handler = xmlStructuredError;
};

QString parserMessage(xmlParserCtxt *parser)
{
    const xmlError *const error = xmlCtxtGetLastError(parser);
    if (!error || !error->message)
        return u"XML 无法解析。"_s;
    return u"XML 第 "_s + QString::number(error->line) + u" 行："_s + QString::fromUtf8(error->message).trimmed();
}

} // namespace

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal)
{
    if (mentionsEntity(bytes))
        throw ConversionError(entityRefusal.toString());
    if (bytes.size() > std::numeric_limits<int>::max())
        throw PlatformError(u"XML 无法解析。"_s);
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
    if (!parser)
        throw std::bad_alloc();
    const SilentErrors silent;
    // The text search above knows the encodings of one, two and four bytes; the parser knows them all.
    bool declaresEntity = false;
    parser->_private = &declaresEntity;
    parser->sax->entityDecl = refuseEntity;
    XmlDocument document(
        xmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                          XML_PARSE_NONET | XML_PARSE_COMPACT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (declaresEntity)
        throw ConversionError(entityRefusal.toString());
    if (!document.get() || !parser->wellFormed || !document.root())
        throw PlatformError(parserMessage(parser.get()));
    return document;
}

namespace Xml {

bool isElement(const xmlNode *node, QByteArrayView name)
{
    return elementName(node) == name;
}

QByteArrayView elementName(const xmlNode *node)
{
    return node->type == XML_ELEMENT_NODE && !node->ns ? QByteArrayView(plainChars(node->name)) : QByteArrayView();
}

std::optional<QByteArray> attribute(const xmlNode *element, QByteArrayView name)
{
    for (const xmlAttr *each = element->properties; each; each = each->next) {
        if (each->ns || QByteArrayView(plainChars(each->name)) != name)
            continue;
        // Nearly always one text node; references to entities that are not predefined stand in nodes of their own.
        const xmlNode *const value = each->children;
        if (!value)
            return QByteArray("");
        if (!value->next && value->type == XML_TEXT_NODE)
            return QByteArray(plainChars(value->content));
        const std::unique_ptr<xmlChar, decltype(xmlFree)> whole(xmlNodeListGetString(element->doc, value, 1), xmlFree);
        return QByteArray(plainChars(whole.get()));
    }
    return std::nullopt;
}

std::optional<qint64> integerAttribute(const xmlNode *element, QByteArrayView name)
{
    const auto text = attribute(element, name);
    if (!text)
        return std::nullopt;
    // from_chars takes neither blanks nor a plus, which the form allows once.
    const QByteArrayView digits =
        text->startsWith('+') && !text->startsWith("+-") ? QByteArrayView(*text).sliced(1) : *text;
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
