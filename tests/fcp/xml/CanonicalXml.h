#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// What two documents are compared by.
namespace CanonicalXml {

/// Canonical XML 1.0 with comments of a document.
QByteArray of(const QByteArray &document);

/// The same without the titles and the effect that connecting titles adds, and without the project's name, "uid" and
/// "modDate", which it changes: `lane` is that of the added titles, `effect` the added id.
QByteArray withoutTitles(const QByteArray &document, const QByteArray &lane, const QByteArray &effect);

} // namespace CanonicalXml
