#pragma once

#include <QString>

/// Telling a file from its replacement of the same content.
namespace FileIdentity {

/// Another number whenever the file at `path` is replaced by one that was written while it was there. 0 when there is
/// none.
quint64 of(const QString &path);

} // namespace FileIdentity
