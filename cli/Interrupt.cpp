#include "cli/Interrupt.h"

#include "core/Cancelled.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace Interrupt {

namespace {

volatile std::sig_atomic_t requested = 0;
int wakeUp[2] = {-1, -1}; ///< A pipe: reading end, writing end.

void note(int /*signal*/)
{
    const int saved = errno;
    requested = 1;
    // A full pipe wakes the reader as well as one more byte would.
    [[maybe_unused]] const auto written = write(wakeUp[1], "!", 1);
    errno = saved;
}

} // namespace

void watch()
{
    if (pipe(wakeUp) == 0) {
        for (const int end : wakeUp)
            fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(wakeUp[1], F_SETFL, O_NONBLOCK);
    }
    struct sigaction action = {};
    action.sa_handler = note;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

void check()
{
    if (requested != 0)
        throw Cancelled();
}

int descriptor()
{
    return wakeUp[0];
}

} // namespace Interrupt
