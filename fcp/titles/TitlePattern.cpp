#include "fcp/titles/TitlePattern.h"

#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlText.h"

#include <QLocale>

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
