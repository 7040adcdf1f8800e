#pragma once

#include <QByteArrayView>

/// What must be known of a document's bytes before the parser sees them.
namespace XmlGuard {

/// Whether the bytes, read as text of one, two or four bytes a character, contain "<!ENTITY".
bool mentionsEntity(QByteArrayView bytes);

/// Whether a start tag has more attributes than any real document, or may have because the encoding hides them. The
/// parser compares each attribute of a tag with all others: a hundred thousand of them would keep it busy for minutes.
bool hasOverlongTag(QByteArrayView bytes);

/// The bytes without the blanks after a document's last ">". They mean nothing, yet the parser refuses more than 10 MB
/// of them.
QByteArrayView withoutBlankEnd(QByteArrayView bytes);

} // namespace XmlGuard
