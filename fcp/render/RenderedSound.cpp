#include "fcp/render/RenderedSound.h"

#include "ai/speech/WavFile.h"
#include "core/PlatformError.h"

#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 sampleSize = 2;         // bytes
constexpr quint32 sampleRate = 16'000;   // samples a second
constexpr qint64 blockSize = sampleRate; // samples
constexpr qint64 sizeFieldSize = 4;      // bytes

QByteArray number(quint32 value)
{
    QByteArray bytes(sizeFieldSize, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray number(quint16 value)
{
    QByteArray bytes(sampleSize, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray header(qint64 samples)
{
    constexpr qint64 headerSize = 36; // bytes that follow the first size
    const auto bytes = quint32(samples * sampleSize);
    return "RIFF" + number(quint32(headerSize) + bytes) + "WAVEfmt " + number(quint32(16)) + number(quint16(1)) +
           number(quint16(1)) + number(sampleRate) + number(quint32(sampleRate * sampleSize)) +
           number(quint16(sampleSize)) + number(quint16(16)) + "data" + number(bytes);
}

void write(QFile &file, const QByteArray &bytes)
{
    if (file.write(bytes) != bytes.size())
        throw PlatformError::aboutFile(file.fileName(), file.errorString());
}

} // namespace

RenderedSound::RenderedSound(const QString &path)
    : m_file(path)
{
    const auto sound = WavFile::sound(path);
    if (!sound || sound->bytesPerSecond != sampleRate * sampleSize || sound->channels != 1)
        return;
    if (!m_file.open(QIODevice::ReadWrite))
        throw PlatformError::aboutFile(path, m_file.errorString());
    m_begin = sound->begin;
    m_size = sound->size / sampleSize;
}

void RenderedSound::resize(qint64 size)
{
    const qint64 bytes = size * sampleSize;
    const auto patch = [&](qint64 place, qint64 value) {
        if (!m_file.seek(place))
            throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
        write(m_file, number(quint32(value)));
    };
    // What a file is lengthened by reads as zeros, which is silence.
    if (!m_file.resize(m_begin + std::min(m_size * sampleSize, bytes)) || !m_file.resize(m_begin + bytes))
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
    patch(sizeFieldSize, m_begin + bytes - 2 * sizeFieldSize);
    patch(m_begin - sizeFieldSize, bytes);
    if (!m_file.flush())
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
    m_size = size;
}

std::vector<qint16> RenderedSound::read(qint64 begin, qint64 count)
{
    std::vector<qint16> samples(static_cast<size_t>(count));
    auto *const bytes = reinterpret_cast<char *>(samples.data());
    if (!m_file.seek(m_begin + begin * sampleSize) || m_file.read(bytes, count * sampleSize) != count * sampleSize)
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
    qFromLittleEndian<qint16>(bytes, count, samples.data());
    return samples;
}

void RenderedSound::forEachBlock(const std::function<void(const std::vector<qint16> &)> &take)
{
    for (qint64 place = 0; place < m_size; place += blockSize)
        take(read(place, std::min(blockSize, m_size - place)));
}

void RenderedSound::copy(qint64 begin, qint64 end, const QString &path)
{
    QFile target(path);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw PlatformError::aboutFile(path, target.errorString());
    write(target, header(end - begin));
    for (qint64 place = begin; place < end; place += blockSize) {
        std::vector<qint16> samples = read(place, std::min(blockSize, end - place));
        auto *const bytes = reinterpret_cast<char *>(samples.data());
        qToLittleEndian<qint16>(samples.data(), qsizetype(samples.size()), bytes);
        write(target, QByteArray::fromRawData(bytes, qsizetype(samples.size()) * sampleSize));
    }
    if (!target.flush())
        throw PlatformError::aboutFile(path, target.errorString());
}
