#include "fcp/xml/XmlParsing.h"

#include "core/ConversionError.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <exception>

using namespace Qt::StringLiterals;

namespace XmlParsing {

namespace {

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
    XmlListener *listener = nullptr;                            ///< Null when nobody listens.
    int outside = 0;                                            ///< Open elements that stay out of the tree.
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

Attributes readAttributes(const XmlTag &tag)
{
    Attributes result;
    for (int i = 0; i < tag.count(); ++i) {
        const XmlTag::Attribute each = tag.attribute(i);
        result.emplace_back(QByteArray(plainChars(each.name)), each.value());
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
        Attributes found = readAttributes(XmlTag(name, prefix, uri, attributes, attributeCount));
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

/// Behind a mistake the parser is silent but for character data, which may stand outside all elements then.
bool isOver(void *context)
{
    return static_cast<xmlParserCtxt *>(context)->disableSAX != 0;
}

void hearStart(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri, int namespaceCount,
               const xmlChar **namespaces, int attributeCount, int defaultCount, const xmlChar **attributes)
{
    Parsing &parsing = parsingOf(context);
    if (!goesOn(context))
        return;
    const xmlNode *const parent = parsing.outside == 0 ? static_cast<xmlParserCtxt *>(context)->node : nullptr;
    const bool wanted = parsing.listener->begin(XmlTag(name, prefix, uri, attributes, attributeCount), parent,
                                                xmlSAX2GetLineNumber(context));
    if (parsing.outside > 0 || (parent && !wanted))
        ++parsing.outside;
    else
        xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount, defaultCount,
                              attributes);
}

void hearEnd(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri)
{
    Parsing &parsing = parsingOf(context);
    parsing.listener->end();
    if (parsing.outside > 0)
        --parsing.outside;
    else
        xmlSAX2EndElementNs(context, name, prefix, uri);
}

void hearCharacters(void *context, const xmlChar *text, int length)
{
    if (isOver(context))
        return;
    Parsing &parsing = parsingOf(context);
    parsing.listener->text(QByteArrayView(plainChars(text), length), false);
    if (parsing.outside == 0)
        xmlSAX2Characters(context, text, length);
}

void hearSection(void *context, const xmlChar *text, int length)
{
    if (isOver(context))
        return;
    Parsing &parsing = parsingOf(context);
    parsing.listener->text(QByteArrayView(plainChars(text), length), true);
    if (parsing.outside == 0)
        xmlSAX2CDataBlock(context, text, length);
}

void hearComment(void *context, const xmlChar *text)
{
    if (parsingOf(context).outside == 0)
        xmlSAX2Comment(context, text);
}

void hearInstruction(void *context, const xmlChar *target, const xmlChar *data)
{
    if (parsingOf(context).outside == 0)
        xmlSAX2ProcessingInstruction(context, target, data);
}

void listenTo(xmlSAXHandler &handler)
{
    handler.startElementNs = hearStart;
    handler.endElementNs = hearEnd;
    handler.characters = hearCharacters;
    handler.ignorableWhitespace = hearCharacters;
    handler.cdataBlock = hearSection;
    handler.comment = hearComment;
    handler.processingInstruction = hearInstruction;
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

PlatformError parserError(xmlParserCtxt *parser)
{
    const xmlError *const error = xmlCtxtGetLastError(parser);
    if (!error || !error->message)
        return refusal(u"内容不完整。"_s);
    // Some of libxml2's descriptions take two lines.
    const QString description = QString::fromUtf8(error->message).simplified();
    // Its limits have no error codes of their own.
    const bool isLimit = description.contains(u"too big") || description.contains(u"huge", Qt::CaseInsensitive);
    return refusal(u"第 %1 行，%2"_s.arg(QString::number(error->line),
                                         isLimit ? u"一段注释、指令或文字超过 10 MB。"_s : description));
}

} // namespace

PlatformError refusal(const QString &description)
{
    return PlatformError(u"XML 无法解析：%1"_s.arg(description));
}

Document run(QByteArrayView bytes, QStringView entityRefusal, const XmlDocument::Extraction *extraction,
             XmlListener *listener, const Check &check)
{
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
    if (!parser)
        throw std::bad_alloc();
    const SilentErrors silent;
    // The guard's search of the text knows the encodings of one, two and four bytes; the parser knows them all.
    Parsing parsing{.check = SparseCheck(check), .extraction = extraction, .listener = listener};
    parser->_private = &parsing;
    parser->sax->startElementNs = startElement;
    if (extraction)
        extractFrom(*parser->sax);
    else if (listener)
        listenTo(*parser->sax);
    parser->sax->entityDecl = refuseEntity;
    parser->sax->reference = refuseReference;
    parser->sax->attributeDecl = declareAttribute;
    Document document(xmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                                        XML_PARSE_NONET | XML_PARSE_COMPACT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
                      xmlFreeDoc);
    if (parsing.end)
        std::rethrow_exception(parsing.end);
    if (parsing.refusal == Refusal::entity)
        throw ConversionError(entityRefusal.toString());
    if (parsing.refusal == Refusal::defaultAttribute)
        throw refusal(u"不支持文档自带的属性默认值。"_s);
    if (!document || !parser->wellFormed || !xmlDocGetRootElement(document.get()))
        throw parserError(parser.get());
    return document;
}

} // namespace XmlParsing
