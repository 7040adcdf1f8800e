#pragma once

#include <QMimeData>
#include <QStringList>

#include <memory>
#include <optional>

/// Final Cut Pro's documents on a pasteboard, in drags both ways.
namespace FCPPasteboard {

/// The types under which Final Cut Pro offers and takes a document, newest first, the one without a version last.
const QStringList &fcpTypes();

/// The type under which `pasteboard` offers a document, the first in order; absent when it offers none.
std::optional<QString> offeredType(const QMimeData &pasteboard);

/// A pasteboard that offers `document` under every type, in order.
std::unique_ptr<QMimeData> offering(const QByteArray &document);

} // namespace FCPPasteboard
