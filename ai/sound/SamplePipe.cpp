#include "ai/sound/SamplePipe.h"

#include "core/PlatformError.h"

#include <QFile>
#include <QtEndian>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

constexpr int longestWaitMS = 20;

int opened(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (mkfifo(name.constData(), 0600) != 0)
        throw PlatformError::aboutFile(path, qt_error_string(errno));
    const int descriptor = open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0)
        return descriptor;
    const QString why = qt_error_string(errno);
    QFile::remove(path);
    throw PlatformError::aboutFile(path, why);
}

} // namespace

SamplePipe::SamplePipe(const QString &path)
    : m_path(path)
    , m_descriptor(opened(path))
{}

SamplePipe::~SamplePipe()
{
    close(m_descriptor);
    QFile::remove(m_path);
}

std::optional<std::span<const qint16>> SamplePipe::read()
{
    const std::span<const qint16> nothing;
    pollfd waited = {m_descriptor, POLLIN, 0};
    if (poll(&waited, 1, longestWaitMS) <= 0)
        return nothing;
    auto *const bytes = reinterpret_cast<char *>(m_samples.data());
    const size_t begin = m_half ? 1 : 0;
    if (const auto half = std::exchange(m_half, std::nullopt))
        bytes[0] = *half;
    const ssize_t size = ::read(m_descriptor, bytes + begin, capacity - begin);
    const int error = errno;
    if (size <= 0 && begin == 1)
        m_half = bytes[0];
    if (size == 0)
        return std::nullopt;
    if (size < 0 && (error == EAGAIN || error == EINTR))
        return nothing;
    if (size < 0)
        throw PlatformError::aboutFile(m_path, qt_error_string(error));
    const size_t count = (begin + size_t(size)) / sampleSize;
    if ((begin + size_t(size)) % sampleSize != 0)
        m_half = bytes[count * sampleSize];
    qFromLittleEndian<qint16>(bytes, qsizetype(count), m_samples.data());
    return std::span<const qint16>(m_samples.data(), count);
}
