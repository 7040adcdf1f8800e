#pragma once

#include <QByteArrayView>
#include <QString>

/// What online services say themselves when they refuse: one line of at most 240 characters in which the key is hidden.
namespace ServiceMessage {

/// The message of a JSON error, with its code; empty when `body` is none, or longer than 65,536 bytes.
QString ofError(QByteArrayView body, const QString &key);

/// The same, or what stands in a body of plain text. Empty for a web page.
QString ofAnyText(QByteArrayView body, const QString &key);

} // namespace ServiceMessage
