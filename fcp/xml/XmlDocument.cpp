#include "fcp/xml/XmlDocument.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "fcp/xml/XmlGuard.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <charconv>
#include <exception>
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

/// What makes us stop the parser, which the document itself may not forbid.
enum class Refusal
{
    none,
    entity,          ///< Declares an entity, or refers to one that is not predefined.
    defaultAttribute ///< Declares an attribute's default, which one line could put into a million elements.
};

/// What goes on while a document is parsed.
struct Parsing
{
    SparseCheck check;
    std::exception_ptr end = nullptr; ///< What the check has thrown: nothing may be thrown through the parser.
    Refusal refusal = Refusal::none;
    const XmlDocument::Extraction *extraction = nullptr;        ///< Null when everything goes into the tree.
    std::optional<XmlDocument::Extract> extract = std::nullopt; ///< The element being taken out.
    int depth = 0;                                              ///< Open elements inside it.
    int textDepth = 0;                                          ///< Those of them that are "text".
};

Parsing &parsingOf(void *context)
{
    return *static_cast<Parsing *>(static_cast<xmlParserCtxt *>(context)->_private);
}

void refuse(void *context, Refusal reason)
{
    parsingOf(context).refusal = reason;
    xmlStopParser(static_cast<xmlParserCtxt *>(context));
}

/// Whether the parser goes on. Once it does not, what it has handed over lies in memory that it has freed.
bool goesOn(void *context)
{
    Parsing &parsing = parsingOf(context);
    try {
        parsing.check();
    } catch (...) {
        parsing.end = std::current_exception();
        xmlStopParser(static_cast<xmlParserCtxt *>(context));
    }
    return !parsing.end;
}

using Attributes = std::vector<std::pair<QByteArray, QByteArray>>;

/// The attributes as the parser hands them over, five pointers each: name, prefix, namespace, value, its end.
Attributes readAttributes(const xmlChar **attributes, int count)
{
    Attributes result;
    for (int i = 0; i < count; ++i) {
        const xmlChar **const each = attributes + ptrdiff_t(i) * 5;
        result.emplace_back(QByteArray(plainChars(each[0])), QByteArray(plainChars(each[3]), each[4] - each[3]));
    }
    return result;
}

/// Which of the wanted elements one is; their number when it is none of them.
size_t wantedIndex(const XmlDocument::Extraction &extraction, const xmlChar *name, const Attributes &attributes)
{
    const auto found = std::ranges::find_if(extraction.wanted, [&](const XmlDocument::Wanted &wanted) {
        return QByteArrayView(plainChars(name)) == wanted.element &&
               std::ranges::all_of(wanted.attributes, [&](const auto &each) {
                   return std::ranges::find(attributes, each) != attributes.end();
               });
    });
    return size_t(found - extraction.wanted.begin());
}

bool hasWantedName(const XmlDocument::Extraction &extraction, const xmlChar *name)
{
    return std::ranges::any_of(extraction.wanted, [&](const XmlDocument::Wanted &wanted) {
        return QByteArrayView(plainChars(name)) == wanted.element;
    });
}

void startElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri, int namespaceCount,
                  const xmlChar **namespaces, int attributeCount, int defaultCount, const xmlChar **attributes)
{
    Parsing &parsing = parsingOf(context);
    if (!goesOn(context))
        return;
    if (parsing.extract) {
        ++parsing.depth;
        parsing.textDepth += QByteArrayView(plainChars(name)) == "text" ? 1 : 0;
        return;
    }
    if (parsing.extraction && hasWantedName(*parsing.extraction, name)) {
        Attributes found = readAttributes(attributes, attributeCount);
        const size_t wanted = wantedIndex(*parsing.extraction, name, found);
        if (wanted < parsing.extraction->wanted.size()) {
            parsing.extract = {.wanted = wanted,
                               .parent = static_cast<xmlParserCtxt *>(context)->node,
                               .attributes = std::move(found),
                               .text = {}};
            return;
        }
    }
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount, defaultCount,
                          attributes);
}

void endElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri)
{
    Parsing &parsing = parsingOf(context);
    if (!parsing.extract) {
        xmlSAX2EndElementNs(context, name, prefix, uri);
    } else if (parsing.depth == 0) {
        parsing.extraction->take(*std::exchange(parsing.extract, std::nullopt));
    } else {
        --parsing.depth;
        parsing.textDepth -= QByteArrayView(plainChars(name)) == "text" ? 1 : 0;
    }
}

void takeCharacters(void *context, const xmlChar *text, int length)
{
    Parsing &parsing = parsingOf(context);
    if (!parsing.extract)
        xmlSAX2Characters(context, text, length);
    else if (parsing.textDepth > 0)
        parsing.extract->text.append(plainChars(text), length);
}

void takeSection(void *context, const xmlChar *text, int length)
{
    if (parsingOf(context).extract)
        takeCharacters(context, text, length);
    else
        xmlSAX2CDataBlock(context, text, length);
}

void takeComment(void *context, const xmlChar *text)
{
    if (!parsingOf(context).extract)
        xmlSAX2Comment(context, text);
}

void takeInstruction(void *context, const xmlChar *target, const xmlChar *data)
{
    if (!parsingOf(context).extract)
        xmlSAX2ProcessingInstruction(context, target, data);
}

void extractFrom(xmlSAXHandler &handler)
{
    handler.endElementNs = endElement;
    handler.characters = takeCharacters;
    handler.ignorableWhitespace = takeCharacters;
    handler.cdataBlock = takeSection;
    handler.comment = takeComment;
    handler.processingInstruction = takeInstruction;
}

void refuseEntity(void *context, const xmlChar * /*name*/, int /*type*/, const xmlChar * /*publicId*/,
                  const xmlChar * /*systemId*/, xmlChar * /*content*/)
{
    refuse(context, Refusal::entity);
}

void refuseReference(void *context, const xmlChar * /*name*/)
{
    refuse(context, Refusal::entity);
}

void declareAttribute(void *context, const xmlChar *element, const xmlChar *name, int type, int presence,
                      const xmlChar *value, xmlEnumeration *values)
{
    if (value) {
        xmlFreeEnumeration(values);
        refuse(context, Refusal::defaultAttribute);
    } else {
        xmlSAX2AttributeDecl(context, element, name, type, presence, value, values);
    }
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

PlatformError parseError(const QString &description)
{
    return PlatformError(u"XML 无法解析：%1"_s.arg(description));
}

PlatformError parserError(xmlParserCtxt *parser)
{
    const xmlError *const error = xmlCtxtGetLastError(parser);
    if (!error || !error->message)
        return parseError(u"内容不完整。"_s);
    // Some of libxml2's descriptions take two lines.
    const QString description = QString::fromUtf8(error->message).simplified();
    // Its limits have no error codes of their own.
    const bool isLimit = description.contains(u"too big") || description.contains(u"huge", Qt::CaseInsensitive);
    return parseError(u"第 %1 行，%2"_s.arg(QString::number(error->line),
                                            isLimit ? u"一段注释、指令或文字超过 10 MB。"_s : description));
}

} // namespace

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Check &check)
{
    return parse(bytes, entityRefusal, nullptr, check);
}

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction &extraction,
                               const Check &check)
{
    return parse(bytes, entityRefusal, &extraction, check);
}

QByteArray XmlDocument::Extract::attribute(QByteArrayView name) const
{
    const auto found = std::ranges::find(attributes, name, &std::pair<QByteArray, QByteArray>::first);
    return found == attributes.end() ? QByteArray() : found->second;
}

XmlDocument XmlDocument::parse(QByteArrayView bytes, QStringView entityRefusal, const Extraction *extraction,
                               const Check &check)
{
    if (XmlGuard::mentionsEntity(bytes))
        throw ConversionError(entityRefusal.toString());
    if (bytes.size() > std::numeric_limits<int>::max())
        throw parseError(u"文件过大。"_s);
    if (XmlGuard::hasOverlongTag(bytes))
        throw parseError(u"一个元素的属性过多。"_s);
    if (check)
        check();
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
    if (!parser)
        throw std::bad_alloc();
    const SilentErrors silent;
    // The text search above knows the encodings of one, two and four bytes; the parser knows them all.
    Parsing parsing{.check = SparseCheck(check), .extraction = extraction};
    parser->_private = &parsing;
    parser->sax->startElementNs = startElement;
    if (extraction)
        extractFrom(*parser->sax);
    parser->sax->entityDecl = refuseEntity;
    parser->sax->reference = refuseReference;
    parser->sax->attributeDecl = declareAttribute;
    const QByteArrayView content = XmlGuard::withoutBlankEnd(bytes);
    XmlDocument document(
        xmlCtxtReadMemory(parser.get(), content.data(), static_cast<int>(content.size()), nullptr, nullptr,
                          XML_PARSE_NONET | XML_PARSE_COMPACT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (parsing.end)
        std::rethrow_exception(parsing.end);
    if (parsing.refusal == Refusal::entity)
        throw ConversionError(entityRefusal.toString());
    if (parsing.refusal == Refusal::defaultAttribute)
        throw parseError(u"不支持文档自带的属性默认值。"_s);
    if (!document.get() || !parser->wellFormed || !document.root())
        throw parserError(parser.get());
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

std::optional<QByteArrayView> attributeView(const xmlNode *element, QByteArrayView name)
{
    for (const xmlAttr *each = element->properties; each; each = each->next) {
        if (each->ns || QByteArrayView(plainChars(each->name)) != name)
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
    if (!text)
        return std::nullopt;
    // from_chars takes neither blanks nor a plus, which the form allows once.
    const QByteArrayView digits = text->startsWith('+') && !text->startsWith("+-") ? text->sliced(1) : *text;
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
