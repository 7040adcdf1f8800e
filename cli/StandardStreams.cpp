#include "cli/StandardStreams.h"

#include "cli/Interrupt.h"
#include "core/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace StandardStreams {

namespace {

[[noreturn]] void throwSystemError()
{
    throw PlatformError(qt_error_string(errno));
}

/// Waits until `descriptor` is ready for `events` or a signal comes.
void waitFor(int descriptor, short events)
{
    pollfd waited[] = {{descriptor, events, 0}, {Interrupt::descriptor(), POLLIN, 0}};
    while (poll(waited, 2, -1) < 0) {
        if (errno != EINTR)
            throwSystemError();
        Interrupt::check();
    }
    Interrupt::check();
}

/// How much a write can take without a wait that no signal would end.
qsizetype pieceSize(int descriptor)
{
    struct stat status = {};
    const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? 1024 * 1024 : PIPE_BUF;
}

/// Everything up to the end, absent when it is more than `limit` bytes.
std::optional<QByteArray> readUpTo(int descriptor, qint64 limit)
{
    QByteArray bytes;
    QByteArray piece(256 * 1024, Qt::Uninitialized);
    for (;;) {
        waitFor(descriptor, POLLIN);
        const auto size = ::read(descriptor, piece.data(), static_cast<size_t>(piece.size()));
        if (size < 0 && errno != EINTR && errno != EAGAIN)
            throwSystemError();
        if (size == 0)
            return bytes;
        if (size > 0)
            bytes.append(piece.constData(), size);
        if (bytes.size() > limit)
            return std::nullopt;
    }
}

void writeAll(int descriptor, QByteArrayView bytes)
{
    const qsizetype piece = pieceSize(descriptor);
    while (!bytes.isEmpty()) {
        waitFor(descriptor, POLLOUT);
        const auto size = ::write(descriptor, bytes.data(), static_cast<size_t>(std::min(piece, bytes.size())));
        if (size < 0 && errno != EINTR && errno != EAGAIN)
            throwSystemError();
        if (size > 0)
            bytes = bytes.sliced(size);
    }
}

/// Opens without waiting for the other end of a pipe, so that the wait for it can be interrupted.
int openPipe(const QString &path, int mode)
{
    const int descriptor = open(QFile::encodeName(path).constData(), mode | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        throw PlatformError::aboutFile(path, qt_error_string(errno));
    return descriptor;
}

} // namespace

void reserve()
{
    // Opened for reading, so that writing to a stream that was closed fails as it should.
    int descriptor = 0;
    do
        descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

bool isPipe(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile() && !file.isDir();
}

std::optional<QByteArray> readUpTo(qint64 limit)
{
    return readUpTo(STDIN_FILENO, limit);
}

std::optional<QByteArray> readPipe(const QString &path, qint64 limit)
{
    const int descriptor = openPipe(path, O_RDONLY);
    const auto closing = qScopeGuard([&] { close(descriptor); });
    return readUpTo(descriptor, limit);
}

void write(QByteArrayView bytes)
{
    writeAll(STDOUT_FILENO, bytes);
}

Pipe::Pipe(const QString &path)
    : m_path(path)
    , m_descriptor(openPipe(path, O_WRONLY))
{}

Pipe::~Pipe()
{
    close(m_descriptor);
}

void Pipe::write(QByteArrayView bytes) const
{
    Failure::naming(m_path, [&] { writeAll(m_descriptor, bytes); });
}

void finish()
{
    if (close(STDOUT_FILENO) != 0)
        throwSystemError();
}

void writeError(QByteArrayView line)
{
    QByteArray whole = line.toByteArray() + '\n';
    // Nobody can be told when even this fails.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, whole.constData(), static_cast<size_t>(whole.size()));
}

bool errorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

} // namespace StandardStreams
