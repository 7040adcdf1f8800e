#pragma once

#include <QString>

#include <optional>

/// What a WAV file says of itself.
namespace WavFile {

/// How long it sounds in milliseconds, rounded; 0 when it holds no sample. What a header promises and the file does not
/// hold is not counted. Reads the chunks' headers alone. Absent when it is no WAV file or cannot be read.
std::optional<qint64> durationMS(const QString &path);

} // namespace WavFile
