#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Whole files into memory.
namespace FileReader {

/// All bytes of the file at `path`.
/// @throws PlatformError when it cannot be opened or read to its end; its detail names the file.
QByteArray readAll(const QString &path);

/// The same for a file that must not be larger than `limit` bytes: absent when it is. At most `limit` + 1 bytes are
/// read, whatever the file's stated size.
std::optional<QByteArray> readUpTo(const QString &path, qint64 limit);

} // namespace FileReader
