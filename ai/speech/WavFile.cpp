#include "ai/speech/WavFile.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace WavFile {

namespace {

constexpr qsizetype headerSize = 8; ///< Of a chunk: four letters and the size of what follows.

quint32 number(const QByteArray &bytes, qsizetype at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

} // namespace

std::optional<qint64> durationMS(const QString &path)
{
    constexpr qsizetype formatSize = 16; // bytes of a format that are read
    constexpr qsizetype ratePlace = 8;   // bytes a second stand there in it
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray beginning = file.read(12);
    if (beginning.size() < 12 || !beginning.startsWith("RIFF") || !beginning.endsWith("WAVE"))
        return std::nullopt;
    qint64 bytesPerSecond = 0;
    for (;;) {
        const QByteArray header = file.read(headerSize);
        if (header.size() < headerSize)
            return std::nullopt;
        const qint64 size = number(header, 4);
        const qint64 begin = file.pos();
        if (header.startsWith("data")) {
            const qint64 bytes = std::min(size, file.size() - begin);
            if (bytesPerSecond == 0)
                return std::nullopt;
            return (bytes * 1'000 + bytesPerSecond / 2) / bytesPerSecond;
        }
        if (header.startsWith("fmt ")) {
            const QByteArray format = file.read(formatSize);
            if (format.size() < formatSize)
                return std::nullopt;
            bytesPerSecond = number(format, ratePlace);
        }
        // Chunks begin at even places.
        if (!file.seek(begin + size + size % 2))
            return std::nullopt;
    }
}

} // namespace WavFile
