#pragma once

#include <QStringView>

class Utf8Writer;

/// Text that goes into an XML document.
namespace XmlText {

/// Writes `text` as element content: & < > and carriage returns as references, line feeds and tabs as they stand.
void writeContent(QStringView text, Utf8Writer &out);
void writeContent(QByteArrayView utf8, Utf8Writer &out);

/// Writes `text` as the inside of a double-quoted attribute: quotes, tabs and line breaks as references too, which a
/// reader would otherwise turn into blanks.
void writeAttribute(QStringView text, Utf8Writer &out);
void writeAttribute(QByteArrayView utf8, Utf8Writer &out);

} // namespace XmlText
