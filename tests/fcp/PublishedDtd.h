#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// A published document type definition of FCPXML, where the shared test data has it.
namespace PublishedDtd {

/// What is wrong with `document` under the definition of `version` ("1.10"), empty when nothing is. Absent when the
/// definition is not at hand.
std::optional<QString> problems(const QByteArray &document, const QString &version);

} // namespace PublishedDtd
