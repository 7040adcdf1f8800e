#include "fcp/titles/TitlePattern.h"

#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlText.h"

#include <QLocale>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Shortest decimal that reads back to the same double, never with an exponent, whole numbers with ".0".
QByteArray decimal(double value)
{
    QByteArray text = QByteArray::number(value, 'f', QLocale::FloatingPointShortest);
    if (!text.contains('.'))
        text += ".0";
    return text;
}

QByteArray attributeText(QStringView text)
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    XmlText::writeAttribute(text, out);
    out.finish();
    return bytes;
}

/// A line break and the blanks of a line `depth` levels below a title's; nothing where nothing may stand.
QByteArray lineBreak(const TitlePattern::Place &place, int depth)
{
    return place.indentation ? '\n' + QByteArray(*place.indentation + 4 * depth, ' ') : QByteArray();
}

/// What follows the slot of a time, as FrameRate::time has it.
QByteArray endOfTime(const Options &options)
{
    return '/' + QByteArray::number(options.rate.numerator) + 's';
}

QByteArray textStyle(const Options &options)
{
    QByteArray style = "<text-style font=\"" + attributeText(options.font) + "\" fontFace=\"" +
                       attributeText(options.fontFace.value_or(u"Regular"_s)) + "\" fontSize=\"" +
                       decimal(options.fontSize) + "\" fontColor=\"" + attributeText(options.fontColor) +
                       "\" alignment=\"center\"";
    if (options.strokeEnabled)
        style += " strokeColor=\"" + attributeText(options.strokeColor) + "\" strokeWidth=\"" +
                 decimal(options.strokeWidth) + '"';
    if (options.shadowEnabled)
        style += " shadowColor=\"" + attributeText(options.shadowColor) +
                 "\" shadowOffset=\"2 -2\" shadowBlurRadius=\"" + decimal(options.shadowBlur) + '"';
    return style + "/>";
}

/// What Final Cut Pro itself gives its captions.
constexpr QByteArrayView captionStyle = "<text-style font=\".AppleSystemUIFont\" fontSize=\"13\" fontFace=\"Regular\" "
                                        "fontColor=\"1 1 1 1\" backgroundColor=\"0 0 0 1\"/>";

/// Writes the children of a template's title, with the places that each title fills.
class CopiedContent
{
public:
    CopiedContent(const QList<QByteArray> &effectIDs, TitlePattern &pattern)
        : m_effectIDs(effectIDs)
        , m_pattern(pattern)
    {}

    void begin(QByteArray bytes) { m_bytes += bytes; }

    void write(const xmlNode *node)
    {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            return writeText(QByteArrayView(reinterpret_cast<const char *>(node->content)));
        if (node->type != XML_ELEMENT_NODE)
            return;
        const QByteArray name = Xml::elementName(node).toByteArray();
        m_bytes += '<' + name;
        for (const xmlAttr *each = node->properties; each; each = each->next)
            writeAttribute(node, QByteArray(reinterpret_cast<const char *>(each->name)));
        const bool takesText = name == "text-style" && Xml::isElement(node->parent, "text") && !node->children;
        if (!node->children && !takesText) {
            m_bytes += "/>";
            return;
        }
        m_bytes += '>';
        if (takesText)
            addSlot(TitlePattern::Slot::text);
        for (const xmlNode *child = node->children; child; child = child->next)
            write(child);
        m_bytes += "</" + name + '>';
    }

    void addSlot(TitlePattern::Slot slot, qint64 style = 0)
    {
        m_pattern.pieces.push_back({.bytes = std::exchange(m_bytes, {}), .slot = slot, .style = style});
    }

private:
    void writeText(QByteArrayView text)
    {
        Utf8Writer out([&](QByteArrayView block) { m_bytes.append(block); });
        XmlText::writeContent(text, out);
        out.finish();
    }

    void writeAttribute(const xmlNode *element, const QByteArray &name)
    {
        const QByteArray value = Xml::attribute(element, name).value_or(QByteArray());
        const bool isStyle = (name == "id" && Xml::isElement(element, "text-style-def")) ||
                             (name == "ref" && Xml::isElement(element, "text-style"));
        m_bytes += ' ' + name + "=\"";
        if (isStyle) {
            const qint64 style = value.toLongLong();
            m_pattern.styles = std::max(m_pattern.styles, style + 1);
            m_bytes += "substyle";
            addSlot(TitlePattern::Slot::style, style);
        } else if (name == "ref") {
            m_bytes += m_effectIDs.value(value.toLongLong());
        } else {
            m_bytes += attributeText(QString::fromUtf8(value));
        }
        m_bytes += '"';
    }

    const QList<QByteArray> &m_effectIDs;
    TitlePattern &m_pattern;
    QByteArray m_bytes;
};

} // namespace

TitlePattern TitlePattern::basicTitle(const Options &options, const QByteArray &effectID, const Place &place)
{
    const QByteArray inner = lineBreak(place, 1);
    return {
        .indent = lineBreak(place, 0),
        .lastIndent = lineBreak(place, -1),
        .pieces = {
            {"<title name=\"", Slot::name},
            {"\" ref=\"" + effectID + "\" lane=\"" + place.lane + "\" offset=\"", Slot::offset},
            {endOfTime(options) + "\" start=\"3600s\" duration=\"", Slot::duration},
            {endOfTime(options) + "\" role=\"" + attributeText(options.titleRole.value_or(u"titles.字幕"_s)) + "\">" +
                 inner + "<param name=\"Position\" key=\"9999/999166631/999166633/1/100/101\" value=\"0 0\"/>" + inner +
                 "<param name=\"Alignment\" key=\"9999/999166631/999166633/2/354/999169573/401\" value=\"1 "
                 "(Center)\"/>" +
                 inner + "<text><text-style ref=\"substyle",
             Slot::style},
            // Nothing may be added inside the text-style of a text: every byte of it is shown.
            {"\">", Slot::text},
            {"</text-style></text>" + inner + "<text-style-def id=\"substyle", Slot::style},
            {"\">" + lineBreak(place, 2) + textStyle(options) + inner + "</text-style-def>" + inner +
                 "<adjust-transform position=\"0 " + decimal(options.bottomPercent - 50) + "\"/>" +
                 lineBreak(place, 0) + "</title>",
             Slot::end},
        }};
}

TitlePattern TitlePattern::copied(const TitleTemplate &look, const QList<QByteArray> &effectIDs, const Options &options,
                                  const Place &place)
{
    const XmlDocument tree = XmlDocument::parse(look.xml, u"不支持含外部实体的 XML。");
    TitlePattern pattern{.indent = lineBreak(place, 0), .lastIndent = lineBreak(place, -1), .pieces = {}};
    // In a template that was trimmed at its head an animation would begin in its middle: all begin at the same hour.
    const QByteArray role = Xml::attribute(tree.root(), "role").value_or(QByteArray());
    const QString own = options.titleRole.value_or(role.isEmpty() ? u"titles.字幕"_s : QString::fromUtf8(role));
    CopiedContent content(effectIDs, pattern);
    content.begin("<title name=\"");
    content.addSlot(Slot::name);
    content.begin("\" ref=\"" + effectIDs.first() + "\" lane=\"" + place.lane + "\" offset=\"");
    content.addSlot(Slot::offset);
    content.begin(endOfTime(options) + "\" start=\"3600s\" duration=\"");
    content.addSlot(Slot::duration);
    content.begin(endOfTime(options) + "\" role=\"" + attributeText(own) + "\">");
    for (const xmlNode *const child : Xml::Children(tree.root())) {
        content.begin(lineBreak(place, 1));
        content.write(child);
    }
    content.begin(lineBreak(place, 0) + "</title>");
    content.addSlot(Slot::end);
    return pattern;
}

TitlePattern TitlePattern::caption(const CaptionRole &role, const Options &options, const Place &place)
{
    const QByteArray inner = lineBreak(place, 1);
    // A caption has neither an effect nor a place in the picture.
    return {.indent = lineBreak(place, 0),
            .lastIndent = lineBreak(place, -1),
            .pieces = {
                {"<caption name=\"", Slot::name},
                {"\" lane=\"" + place.lane + "\" offset=\"", Slot::offset},
                {endOfTime(options) + "\" start=\"3600s\" duration=\"", Slot::duration},
                {endOfTime(options) + "\" role=\"" + attributeText(role.toText()) + "\">" + inner +
                     "<text placement=\"bottom\"><text-style ref=\"substyle",
                 Slot::style},
                {"\">", Slot::text},
                {"</text-style></text>" + inner + "<text-style-def id=\"substyle", Slot::style},
                {"\">" + lineBreak(place, 2) + captionStyle.toByteArray() + inner + "</text-style-def>" +
                     lineBreak(place, 0) + "</caption>",
                 Slot::end},
            }};
}
