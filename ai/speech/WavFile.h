#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What a WAV file says of itself.
namespace WavFile {

/// Where the sound of a WAV file lies.
struct Sound
{
    qint64 begin = 0; ///< Bytes before the first sample.
    qint64 size = 0;  ///< Bytes of samples. What the header promises and the file does not hold is not counted.
    qint64 bytesPerSecond = 0; ///< Above 0.
    int channels = 0;
};

/// Reads the chunks' headers alone. Absent when it is no WAV file or cannot be read.
std::optional<Sound> sound(const QString &path);

/// A whole file of silence, as long as that: one channel, 16 bits, 16,000 samples a second.
QByteArray silence(qint64 ms);

/// How long it sounds in milliseconds, rounded; 0 when it holds no sample. Absent as above.
std::optional<qint64> durationMS(const QString &path);

} // namespace WavFile
