#include "fcp/texts/TitleCopy.h"

#include "fcp/texts/TextEditor.h"

#include <algorithm>
#include <array>
#include <map>

TitleCopy::TitleCopy(const XmlDocument &document)
    : m_styles(Identifiers(document).counter("substyle"))
{}

bool TitleCopy::isPlain(const xmlNode *element)
{
    static constexpr std::array<QByteArrayView, 4> names{"param", "text", "text-style-def", "filter-video"};
    for (const xmlNode *const child : Xml::Children(element)) {
        const QByteArrayView name = Xml::elementName(child);
        if (std::ranges::find(names, name) == names.end() && !name.startsWith("adjust-"))
            return false;
    }
    return true;
}

QByteArray TitleCopy::copy(const QByteArray &xml, const Place &place, const QString &text)
{
    const XmlDocument tree = XmlDocument::parse(xml, {});
    TextEditor editor(xml, tree);
    editor.setText(tree.root(), text);
    editor.setAttribute(tree.root(), "offset", place.offset);
    editor.setAttribute(tree.root(), "duration", place.duration);
    std::map<QByteArray, QByteArray> ids;
    for (const xmlNode *element = tree.root(); element; element = Xml::nextElement(element, tree.root())) {
        const auto id = Xml::attribute(element, "id");
        if (id && Xml::isElement(element, "text-style-def")) {
            ids[*id] = "substyle" + QByteArray::number(m_styles.next());
            editor.setAttribute(element, "id", ids[*id]);
        }
    }
    for (const xmlNode *element = tree.root(); element; element = Xml::nextElement(element, tree.root())) {
        const auto ref = Xml::attribute(element, "ref");
        if (ref && Xml::isElement(element, "text-style") && ids.contains(*ref))
            editor.setAttribute(element, "ref", ids[*ref]);
    }
    return editor.changed();
}
