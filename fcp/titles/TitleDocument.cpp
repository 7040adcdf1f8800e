#include "fcp/titles/TitleDocument.h"

#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlText.h"
#include "fcp/xml/XmlWriter.h"

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

/// The parts of a title that are the same in every title of a document, ready to be copied.
struct TitlePattern
{
    QByteArray indent;     ///< Before the title.
    QByteArray lastIndent; ///< After the last title of a clip.
    QByteArray toOffset;
    QByteArray endOfTime;
    QByteArray toStyleReference;
    QByteArray toStyleDefinition;
    QByteArray toEnd;
};

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

TitlePattern makePattern(const TitleDocument::Content &content)
{
    const Options &options = content.options;
    const std::optional<int> indentation = content.indentation;
    const auto lineBreak = [&](int depth) {
        return indentation ? '\n' + QByteArray(*indentation + 4 * depth, ' ') : QByteArray();
    };
    const QByteArray inner = lineBreak(1);
    return {
        .indent = lineBreak(0),
        .lastIndent = lineBreak(-1),
        .toOffset = "\" ref=\"" + content.effectID + "\" lane=\"" + QByteArray::number(content.lane) + "\" offset=\"",
        .endOfTime = '/' + QByteArray::number(options.rate.numerator) + 's',
        .toStyleReference =
            "\" role=\"" + attributeText(options.titleRole.value_or(u"titles.字幕"_s)) + "\">" + inner +
            "<param name=\"Position\" key=\"9999/999166631/999166633/1/100/101\" value=\"0 0\"/>" + inner +
            "<param name=\"Alignment\" key=\"9999/999166631/999166633/2/354/999169573/401\" value=\"1 (Center)\"/>" +
            inner + "<text><text-style ref=\"substyle",
        // Nothing may be added inside the text-style of a text: every byte of it is shown.
        .toStyleDefinition = "</text-style></text>" + inner + "<text-style-def id=\"substyle",
        .toEnd = "\">" + lineBreak(2) + textStyle(options) + inner + "</text-style-def>" + inner +
                 "<adjust-transform position=\"0 " + decimal(options.bottomPercent - 50) + "\"/>" + lineBreak(0) +
                 "</title>",
    };
}

class Writer : public XmlWriter
{
public:
    Writer(const TitleDocument::Content &content, Utf8Writer &out)
        : XmlWriter(out)
        , m_content(content)
        , m_pattern(makePattern(content))
    {}

protected:
    bool hasInsertion(const xmlNode *element) const override { return element->_private != nullptr; }

    void insertBefore(const xmlNode *element, const xmlNode *child) override
    {
        const auto &run = *static_cast<const TitleRun *>(element->_private);
        if (child != run.before)
            return;
        for (size_t i = run.first; i != run.end; ++i)
            writeTitle(m_content.titles[i]);
        out().bytes(m_pattern.lastIndent);
    }

private:
    void writeTitle(const ConnectedTitle &title)
    {
        Utf8Writer &to = out();
        to.bytes(m_pattern.indent);
        to.bytes("<title name=\"");
        if (title.text.contains(u'\n'))
            XmlText::writeAttribute(title.text.toString().replace(u'\n', u' '), to);
        else
            XmlText::writeAttribute(title.text, to);
        to.bytes(m_pattern.toOffset);
        writeTime(title.offsetFrame);
        to.bytes("\" start=\"3600s\" duration=\"");
        writeTime(title.frames);
        to.bytes(m_pattern.toStyleReference);
        to.number(title.styleNumber);
        to.bytes("\">");
        XmlText::writeContent(title.text, to);
        to.bytes(m_pattern.toStyleDefinition);
        to.number(title.styleNumber);
        to.bytes(m_pattern.toEnd);
    }

    /// As FrameRate::time, whose product was checked when the title was connected.
    void writeTime(qint64 frames)
    {
        out().number(frames * m_content.options.rate.denominator);
        out().bytes(m_pattern.endOfTime);
    }

    const TitleDocument::Content &m_content;
    TitlePattern m_pattern;
};

} // namespace

TitleDocument::TitleDocument(Content content)
    : m_content(std::move(content))
{
    // libxml2 keeps one pointer in every node for the application: a clip knows its titles without a search.
    for (TitleRun &run : m_content.runs)
        run.clip->_private = &run;
}

void TitleDocument::write(Utf8Writer &out) const
{
    Writer(m_content, out).write(m_content.tree);
    out.finish();
}

QByteArray TitleDocument::toUtf8() const
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    write(out);
    return bytes;
}
