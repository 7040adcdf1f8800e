#pragma once

#include <QByteArray>
#include <QString>

class Job;

namespace FileDigest {

/// SHA-256 of the file at `path` in small hexadecimal digits. Reads it once, in small blocks; cancelling is felt within
/// one of them. @throws PlatformError when it cannot be read; Cancelled
QByteArray sha256(const QString &path, const Job *job = nullptr);

} // namespace FileDigest
