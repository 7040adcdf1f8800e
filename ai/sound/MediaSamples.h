#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <optional>
#include <span>

class LocalAIJob;
class Workspace;

/// The sound of a recording as samples of 16 kHz, one channel, 16 bits.
namespace MediaSamples {

constexpr int samplesPerMS = 16;

/// Samples in the order of the recording, and how long the whole medium says it is: milliseconds, 0 where it does not.
using Take = std::function<void(std::span<const qint16> samples, qint64 mediaMS)>;

/// Hands out the first audio stream of the file at `path` while the helper decodes it. No file lies between, and no
/// more than a moment of it is in memory. The times are those at which a player plays it: what is missing before its
/// beginning and in gaps is silence. Blocks until all is read.
/// @throws ConversionError when the file is not there, is no medium or has no sound, with the helper's reason as the
/// detail, or when the helper is missing; PlatformError, Cancelled; passes on what `take` throws
void read(const QString &path, LocalAIJob &job, const Workspace &workspace, const Take &take);

/// What the helper is asked.
QStringList arguments(const QString &media);

/// How long the medium is, by what the helper has said so far. Milliseconds.
std::optional<qint64> duration(const QByteArray &log);

/// @throws ConversionError when the file at `path` is not there, or may not be read
void refuseMissing(const QString &path);

/// The last thing that the helper said went wrong; empty for none.
QString complaint(const QByteArray &log);

} // namespace MediaSamples
