#include "fcp/texts/TextFields.h"

#include "core/text/Characters.h"
#include "fcp/xml/XmlDocument.h"

#include <algorithm>

namespace TextFields {

namespace {

/// The character data directly inside an element.
QString directText(const xmlNode *element)
{
    QString text;
    for (const xmlNode *node = element->children; node; node = node->next) {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            text += QString::fromUtf8(reinterpret_cast<const char *>(node->content));
    }
    return text;
}

Field readField(const xmlNode *element)
{
    Field field{.element = element};
    for (const xmlNode *const child : Xml::Children(element)) {
        if (Xml::isElement(child, "text-style"))
            field.runs.push_back({.element = child, .text = directText(child)});
    }
    // The oldest documents have no runs. Between runs there is only layout.
    if (field.runs.empty()) {
        QString bare = directText(element);
        if (!Characters::trimmed(bare).isEmpty())
            field.runs.push_back({.element = element, .text = std::move(bare)});
    }
    return field;
}

} // namespace

QString Field::content() const
{
    if (runs.size() == 1)
        return runs.front().text;
    QString text;
    for (const Run &run : runs)
        text += run.text;
    return text;
}

QString Field::shown() const
{
    return tidied(content());
}

std::vector<Field> read(const xmlNode *element)
{
    std::vector<Field> fields;
    for (const xmlNode *const child : Xml::Children(element)) {
        if (Xml::isElement(child, "text"))
            fields.push_back(readField(child));
    }
    return fields;
}

QString shown(const std::vector<Field> &fields)
{
    QString text;
    for (const Field &field : fields) {
        const QString part = field.shown();
        if (part.isEmpty())
            continue;
        if (!text.isEmpty())
            text += u'\n';
        text += part;
    }
    return text;
}

QString tidied(const QString &text)
{
    const auto isPlain = [](QChar each) { return !Characters::isNewline(each.unicode()); };
    if (std::ranges::all_of(text, isPlain))
        return Characters::trimmed(text).toString();
    QString result;
    qsizetype begin = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i != text.size() && isPlain(text[i]))
            continue;
        const QStringView line = Characters::trimmed(QStringView(text).sliced(begin, i - begin));
        begin = i + 1;
        if (line.isEmpty())
            continue;
        if (!result.isEmpty())
            result += u'\n';
        result += line;
    }
    return result;
}

} // namespace TextFields
