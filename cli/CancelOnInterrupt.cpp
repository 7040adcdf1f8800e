#include "cli/CancelOnInterrupt.h"

#include "cli/Interrupt.h"
#include "core/PlatformError.h"

#include <QString>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

CancelOnInterrupt::CancelOnInterrupt(Job &job)
{
    if (pipe(m_end) != 0)
        throw PlatformError(qt_error_string(errno));
    for (const int end : m_end)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    m_watch = std::thread([this, &job] {
        pollfd watched[] = {{.fd = Interrupt::descriptor(), .events = POLLIN, .revents = 0},
                            {.fd = m_end[0], .events = POLLIN, .revents = 0}};
        while (poll(watched, 2, -1) < 0 && errno == EINTR) {
        }
        if (watched[0].revents != 0)
            job.cancel();
    });
}

CancelOnInterrupt::~CancelOnInterrupt()
{
    close(m_end[1]);
    m_watch.join();
    close(m_end[0]);
}
