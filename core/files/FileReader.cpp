#include "core/files/FileReader.h"

#include "core/PlatformError.h"

#include <QFile>

namespace FileReader {

namespace {

void open(QFile &file)
{
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw PlatformError::aboutFile(file.fileName(), file.errorString());
}

} // namespace

QByteArray readAll(const QString &path)
{
    QFile file(path);
    open(file);
    QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        throw PlatformError::aboutFile(file.fileName(), file.errorString());
    return bytes;
}

std::optional<QByteArray> readUpTo(const QString &path, qint64 limit)
{
    QFile file(path);
    open(file);
    if (file.size() > limit)
        return std::nullopt;
    QByteArray bytes;
    // A device or a growing file has more than its size says, and a read may return less than was asked for.
    for (;;) {
        const QByteArray piece = file.read(limit + 1 - bytes.size());
        if (file.error() != QFile::NoError)
            throw PlatformError::aboutFile(file.fileName(), file.errorString());
        if (piece.isEmpty())
            return bytes;
        bytes = bytes.isEmpty() ? piece : bytes + piece;
        if (bytes.size() > limit)
            return std::nullopt;
    }
}

} // namespace FileReader
