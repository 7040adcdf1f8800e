#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Standard input, output and error, and the pipes that stand in for them, with waits that Ctrl-C ends and errors that
/// are not lost.
namespace StandardStreams {

/// Makes sure that descriptors 0 to 2 are taken, so that no file opened later stands in for a closed stream. Once, at
/// start.
void reserve();

/// Whether `path` names a pipe or another device, which may keep whoever opens it waiting.
bool isPipe(const QString &path);

/// All of standard input, absent when it is more than `limit` bytes. @throws PlatformError, Cancelled
std::optional<QByteArray> readUpTo(qint64 limit);

/// The same for a pipe or another device at `path`.
std::optional<QByteArray> readPipe(const QString &path, qint64 limit);

/// A pipe or another device that is written to as it stands.
class Pipe
{
public:
    explicit Pipe(const QString &path); ///< @throws PlatformError, for instance when nobody reads the pipe.
    ~Pipe();
    Q_DISABLE_COPY_MOVE(Pipe)

    void write(QByteArrayView bytes) const; ///< @throws PlatformError, Cancelled

private:
    QString m_path;
    int m_descriptor;
};

/// Writes all of `bytes` to standard output. @throws PlatformError, Cancelled
void write(QByteArrayView bytes);

/// Closes standard output, where a full disk may only now be noticed. @throws PlatformError
void finish();

/// Writes a line to standard error.
void writeError(QByteArrayView line);

bool errorIsTerminal();

} // namespace StandardStreams
