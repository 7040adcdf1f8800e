#include "fcp/texts/TextDifference.h"

namespace TextDifference {

namespace {

QByteArrayView valueOf(const xmlAttr *attribute)
{
    return {reinterpret_cast<const char *>(attribute->children ? attribute->children->content : nullptr)};
}

bool haveSameAttributes(const xmlNode *before, const xmlNode *after)
{
    const bool isText = Xml::isElement(before, "title") || Xml::isElement(before, "caption");
    const xmlAttr *left = before->properties;
    const xmlAttr *right = after->properties;
    for (; left && right; left = left->next, right = right->next) {
        if (!xmlStrEqual(left->name, right->name))
            return false;
        const bool mayChange = isText && QByteArrayView(reinterpret_cast<const char *>(left->name)) == "name";
        if (!mayChange && valueOf(left) != valueOf(right))
            return false;
    }
    return !left && !right;
}

/// The character data directly inside an element.
QByteArray contentOf(const xmlNode *element)
{
    QByteArray content;
    for (const xmlNode *node = element->children; node; node = node->next) {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            content += reinterpret_cast<const char *>(node->content);
    }
    return content;
}

bool areAlike(const xmlNode *before, const xmlNode *after)
{
    if (!xmlStrEqual(before->name, after->name) || !haveSameAttributes(before, after))
        return false;
    const bool isRun = Xml::isElement(before, "text-style") || Xml::isElement(before, "text");
    return isRun || contentOf(before) == contentOf(after);
}

} // namespace

bool isAll(const XmlDocument &before, const XmlDocument &after, const Check &check)
{
    SparseCheck goOn(check);
    const xmlNode *a = before.root();
    const xmlNode *b = after.root();
    while (a && b) {
        goOn();
        if (!areAlike(a, b))
            return false;
        a = Xml::nextElement(a, before.root());
        b = Xml::nextElement(b, after.root());
    }
    return !a && !b;
}

} // namespace TextDifference
