#include "fcp/xml/XmlWriter.h"

#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlText.h"

namespace {

QByteArrayView view(const xmlChar *text)
{
    return text ? QByteArrayView(reinterpret_cast<const char *>(text)) : QByteArrayView();
}

} // namespace

void XmlWriter::write(const XmlDocument &document)
{
    writeDeclaration(document.get());
    for (const xmlNode *node = document.get()->children; node; node = node->next) {
        writeNode(node);
        m_out.bytes("\n");
    }
}

void XmlWriter::writeDeclaration(const xmlDoc *document)
{
    m_out.bytes("<?xml version=\"");
    m_out.bytes(document->version ? view(document->version) : QByteArrayView("1.0"));
    m_out.bytes("\" encoding=\"UTF-8\"");
    if (document->standalone == 0)
        m_out.bytes(" standalone=\"no\"");
    else if (document->standalone == 1)
        m_out.bytes(" standalone=\"yes\"");
    m_out.bytes("?>\n");
}

/// A document type has a grammar of its own, which libxml2 writes.
void XmlWriter::writeDoctype(xmlDtd *doctype)
{
    const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), xmlBufferFree);
    if (!buffer || xmlNodeDump(buffer.get(), doctype->doc, reinterpret_cast<xmlNode *>(doctype), 0, 0) < 0)
        throw std::bad_alloc();
    m_out.bytes(view(xmlBufferContent(buffer.get())));
}

void XmlWriter::writeNode(const xmlNode *node)
{
    switch (node->type) {
    case XML_ELEMENT_NODE:
        writeElement(node);
        break;
    case XML_TEXT_NODE:
        XmlText::writeContent(view(node->content), m_out);
        break;
    case XML_CDATA_SECTION_NODE:
        // Neighbouring sections are one node in the tree, which may so hold what would end a section.
        m_out.bytes("<![CDATA[");
        m_out.bytes(view(node->content).toByteArray().replace("]]>", "]]]]><![CDATA[>"));
        m_out.bytes("]]>");
        break;
    case XML_COMMENT_NODE:
        m_out.bytes("<!--");
        m_out.bytes(view(node->content));
        m_out.bytes("-->");
        break;
    case XML_PI_NODE:
        m_out.bytes("<?");
        m_out.bytes(view(node->name));
        if (node->content) {
            m_out.bytes(" ");
            m_out.bytes(view(node->content));
        }
        m_out.bytes("?>");
        break;
    case XML_DTD_NODE:
        writeDoctype(reinterpret_cast<xmlDtd *>(const_cast<xmlNode *>(node))); // NOLINT: libxml2's way of a subclass
        break;
    default:
        break;
    }
}

// Recursion is bounded: the parser refuses documents deeper than 256 elements.
void XmlWriter::writeElement(const xmlNode *element)
{
    m_out.bytes("<");
    writeName(element->ns, element->name);
    for (const xmlNs *space = element->nsDef; space; space = space->next) {
        m_out.bytes(space->prefix ? QByteArrayView(" xmlns:") : QByteArrayView(" xmlns"));
        m_out.bytes(view(space->prefix));
        m_out.bytes("=\"");
        XmlText::writeAttribute(view(space->href), m_out);
        m_out.bytes("\"");
    }
    for (const xmlAttr *attribute = element->properties; attribute; attribute = attribute->next) {
        m_out.bytes(" ");
        writeName(attribute->ns, attribute->name);
        m_out.bytes("=\"");
        if (attribute->children)
            XmlText::writeAttribute(view(attribute->children->content), m_out);
        m_out.bytes("\"");
    }
    const bool insertion = hasInsertion(element);
    if (!element->children && !insertion) {
        m_out.bytes("/>");
        return;
    }
    m_out.bytes(">");
    for (const xmlNode *child = element->children; child; child = child->next) {
        if (insertion)
            insertBefore(element, child);
        writeNode(child);
    }
    if (insertion)
        insertBefore(element, nullptr);
    m_out.bytes("</");
    writeName(element->ns, element->name);
    m_out.bytes(">");
}

void XmlWriter::writeName(const xmlNs *space, const xmlChar *name)
{
    if (space && space->prefix) {
        m_out.bytes(view(space->prefix));
        m_out.bytes(":");
    }
    m_out.bytes(view(name));
}
