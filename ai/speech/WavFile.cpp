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

void append(QByteArray &bytes, auto number)
{
    const auto little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

} // namespace

QByteArray silence(qint64 ms)
{
    constexpr quint32 rate = 16'000;
    constexpr quint16 sampleSize = 2; // bytes
    constexpr quint32 formatSize = 16;
    constexpr quint32 restOfHeader = 36; // bytes between the size that the file tells and its samples
    const auto size = quint32(ms * rate / 1'000 * sampleSize);
    QByteArray bytes = "RIFF";
    append(bytes, restOfHeader + size);
    bytes += "WAVEfmt ";
    append(bytes, formatSize);
    append(bytes, quint16(1)); // plain samples
    append(bytes, quint16(1)); // one channel
    append(bytes, rate);
    append(bytes, rate * sampleSize);
    append(bytes, sampleSize);
    append(bytes, quint16(8 * sampleSize));
    bytes += "data";
    append(bytes, size);
    return bytes + QByteArray(qsizetype(size), '\0');
}

std::optional<Sound> sound(const QString &path)
{
    constexpr qsizetype formatSize = 16;   // bytes of a format that are read
    constexpr qsizetype channelsPlace = 2; // the number of channels stands there in it ...
    constexpr qsizetype ratePlace = 8;     // ... and the bytes a second there
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray beginning = file.read(12);
    if (beginning.size() < 12 || !beginning.startsWith("RIFF") || !beginning.endsWith("WAVE"))
        return std::nullopt;
    Sound sound;
    for (;;) {
        const QByteArray header = file.read(headerSize);
        if (header.size() < headerSize)
            return std::nullopt;
        const qint64 size = number(header, 4);
        const qint64 begin = file.pos();
        if (header.startsWith("data")) {
            if (sound.bytesPerSecond == 0)
                return std::nullopt;
            sound.begin = begin;
            sound.size = std::min(size, file.size() - begin);
            return sound;
        }
        if (header.startsWith("fmt ")) {
            const QByteArray format = file.read(formatSize);
            if (format.size() < formatSize)
                return std::nullopt;
            sound.channels = qFromLittleEndian<quint16>(format.constData() + channelsPlace);
            sound.bytesPerSecond = number(format, ratePlace);
        }
        // Chunks begin at even places.
        if (!file.seek(begin + size + size % 2))
            return std::nullopt;
    }
}

std::optional<qint64> durationMS(const QString &path)
{
    const auto found = sound(path);
    if (!found)
        return std::nullopt;
    return (found->size * 1'000 + found->bytesPerSecond / 2) / found->bytesPerSecond;
}

} // namespace WavFile
