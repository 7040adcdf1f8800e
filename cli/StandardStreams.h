#pragma once

#include <QByteArray>
#include <QString>

/// Standard input, output and error, with waits that Ctrl-C ends and errors that are not lost.
namespace StandardStreams {

/// Makes sure that descriptors 0 to 2 are taken, so that no file opened later stands in for a closed stream. Once, at
/// start.
void reserve();

/// All of standard input. @throws PlatformError, Cancelled
QByteArray readAll();

/// All that a pipe or another device at `path` gives until its end. @throws PlatformError, Cancelled
QByteArray readPipe(const QString &path);

/// Writes all of `bytes` to standard output. @throws PlatformError, Cancelled
void write(QByteArrayView bytes);

/// Closes standard output, where a full disk may only now be noticed. @throws PlatformError
void finish();

/// Writes a line to standard error.
void writeError(QByteArrayView line);

bool errorIsTerminal();

} // namespace StandardStreams
