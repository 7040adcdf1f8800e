#pragma once

#include "fcp/xml/XmlDocument.h"

class Utf8Writer;

/// Writes a parsed document as UTF-8, with nothing changed that canonical XML (with comments) would show: elements,
/// attributes, comments, processing instructions, CDATA sections, white space and the order of all of them.
///
/// A subclass may write content of its own that the tree does not hold, which is how ten thousand titles get into a
/// document without a tree of a hundred thousand nodes.
class XmlWriter
{
public:
    explicit XmlWriter(Utf8Writer &out)
        : m_out(out)
    {}
    virtual ~XmlWriter() = default;
    Q_DISABLE_COPY_MOVE(XmlWriter)

    void write(const XmlDocument &document);

protected:
    /// Whether `element` gets content by insertBefore, so that it is written with an end tag of its own.
    virtual bool hasInsertion(const xmlNode * /*element*/) const { return false; }

    /// Called inside an element that hasInsertion before each of its child nodes, and with null before its end tag.
    virtual void insertBefore(const xmlNode * /*element*/, const xmlNode * /*child*/) {}

    Utf8Writer &out() { return m_out; }

private:
    void writeDeclaration(const xmlDoc *document);
    void writeDoctype(xmlDtd *doctype);
    void writeNode(const xmlNode *node);
    void writeElement(const xmlNode *element);
    void writeName(const xmlNs *space, const xmlChar *name);

    Utf8Writer &m_out;
};
