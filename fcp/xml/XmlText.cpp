#include "fcp/xml/XmlText.h"

#include "core/files/Utf8Writer.h"

namespace XmlText {

namespace {

QByteArrayView contentReference(char16_t unit)
{
    switch (unit) {
    case u'&':
        return "&amp;";
    case u'<':
        return "&lt;";
    case u'>':
        return "&gt;";
    case u'\r':
        return "&#13;";
    default:
        return {};
    }
}

QByteArrayView attributeReference(char16_t unit)
{
    switch (unit) {
    case u'"':
        return "&quot;";
    case u'\t':
        return "&#9;";
    case u'\n':
        return "&#10;";
    default:
        return contentReference(unit);
    }
}

void put(QStringView text, Utf8Writer &out)
{
    out.text(text);
}

void put(QByteArrayView utf8, Utf8Writer &out)
{
    out.bytes(utf8);
}

char16_t unit(QChar c)
{
    return c.unicode();
}

char16_t unit(char c)
{
    return static_cast<quint8>(c);
}

/// Copies `text` run by run, with references between the runs.
template <class View>
void write(View text, QByteArrayView (*reference)(char16_t), Utf8Writer &out)
{
    qsizetype run = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = unit(text[i]);
        // No character above ">" needs a reference.
        if (c > u'>')
            continue;
        const QByteArrayView replacement = reference(c);
        if (replacement.isEmpty())
            continue;
        put(text.sliced(run, i - run), out);
        out.bytes(replacement);
        run = i + 1;
    }
    put(text.sliced(run), out);
}

} // namespace

void writeContent(QStringView text, Utf8Writer &out)
{
    write(text, contentReference, out);
}

void writeContent(QByteArrayView utf8, Utf8Writer &out)
{
    write(utf8, contentReference, out);
}

void writeAttribute(QStringView text, Utf8Writer &out)
{
    write(text, attributeReference, out);
}

void writeAttribute(QByteArrayView utf8, Utf8Writer &out)
{
    write(utf8, attributeReference, out);
}

} // namespace XmlText
