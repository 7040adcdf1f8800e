#include "cli/StandardStreams.h"

#include "cli/Interrupt.h"
#include "core/PlatformError.h"

#include <QFile>
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

QByteArray readAll(int descriptor)
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
    }
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

QByteArray readAll()
{
    return readAll(STDIN_FILENO);
}

QByteArray readPipe(const QString &path)
{
    // Opened without waiting for the other end, so that the wait for it can be interrupted too.
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        throwSystemError();
    const auto closing = qScopeGuard([&] { close(descriptor); });
    return readAll(descriptor);
}

void write(QByteArrayView bytes)
{
    const qsizetype piece = pieceSize(STDOUT_FILENO);
    while (!bytes.isEmpty()) {
        waitFor(STDOUT_FILENO, POLLOUT);
        const auto size = ::write(STDOUT_FILENO, bytes.data(), static_cast<size_t>(std::min(piece, bytes.size())));
        if (size < 0 && errno != EINTR && errno != EAGAIN)
            throwSystemError();
        if (size > 0)
            bytes = bytes.sliced(size);
    }
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
