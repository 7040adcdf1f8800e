#include "tests/fcp/xml/CanonicalXml.h"

#include "fcp/xml/XmlDocument.h"

#include <libxml/c14n.h>

namespace CanonicalXml {

namespace {

QByteArray dump(const XmlDocument &document)
{
    xmlChar *bytes = nullptr;
    const int size = xmlC14NDocDumpMemory(document.get(), nullptr, XML_C14N_1_0, nullptr, 1, &bytes);
    const std::unique_ptr<xmlChar, decltype(xmlFree)> owner(bytes, xmlFree);
    return {reinterpret_cast<const char *>(bytes), size};
}

} // namespace

QByteArray of(const QByteArray &document)
{
    return dump(XmlDocument::parse(document, {}));
}

QByteArray withoutTitles(const QByteArray &document, const QByteArray &lane, const QByteArray &effect)
{
    const XmlDocument tree = XmlDocument::parse(document, {});
    xmlNode *element = tree.root();
    while (element) {
        const bool added = (Xml::isElement(element, "title") && Xml::attribute(element, "lane") == lane &&
                            Xml::attribute(element, "ref") == effect) ||
                           (Xml::isElement(element, "effect") && Xml::attribute(element, "id") == effect);
        if (Xml::isElement(element, "project")) {
            for (const char *const name : {"name", "uid", "modDate"})
                Xml::removeAttribute(element, name);
        }
        if (!added) {
            element = Xml::nextElement(element, tree.root());
            continue;
        }
        xmlNode *const parent = element->parent;
        xmlUnlinkNode(element);
        xmlFreeNode(element);
        element = parent;
    }
    return dump(tree);
}

} // namespace CanonicalXml
