#include "ai/HelperGuardian.h"

#include <fcntl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __linux__
#include <dirent.h>
#include <sys/prctl.h>
#endif

#include <cerrno>
#include <csignal>
#include <cstring>

namespace HelperGuardian {

namespace {

constexpr int channel = STDIN_FILENO; ///< Where the guardian keeps its end.
constexpr int errors = STDERR_FILENO; ///< What the helper is given as it stands.
constexpr int output = 3;             ///< What becomes the helper's standard output.

void tell(Report::Kind kind, int value)
{
    const Report report{.kind = kind, .value = value};
    // Nobody is left to tell when this fails. SIGPIPE is blocked.
    [[maybe_unused]] const auto written = write(channel, &report, sizeof report);
}

/// Puts the descriptors where the rest expects them and closes all others, which are our program's.
void takeDescriptors(const Helper &helper)
{
    dup2(helper.channel, channel);
    dup2(helper.errors, errors);
    dup2(helper.output, output);
    close(STDOUT_FILENO);
#ifdef __linux__
    if (close_range(output + 1, ~0U, 0) == 0)
        return;
#endif
    for (int descriptor = output + 1; descriptor < getdtablesize(); ++descriptor)
        close(descriptor);
}

/// The helper's side of the fork: becomes the helper, or writes errno to `failure`.
[[noreturn]] void becomeHelper(const Helper &helper, pid_t guardian, int failure)
{
    // A group of its own, whose members can be reached together.
    setpgid(0, 0);
#ifdef __linux__
    // The guardian has a single thread, which is the one that waits.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (getppid() != guardian)
        _exit(1);
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    close(channel);
    const bool isReady = open("/dev/null", O_RDONLY) == STDIN_FILENO && dup2(output, STDOUT_FILENO) == STDOUT_FILENO;
    close(output);
    if (isReady)
        execve(helper.program, helper.arguments, helper.environment);
    const int error = errno;
    [[maybe_unused]] const auto written = write(failure, &error, sizeof error);
    _exit(1);
}

/// Starts the helper and returns its process id, or ends the guardian.
pid_t start(const Helper &helper)
{
    int failure[2] = {-1, -1};
    if (pipe(failure) != 0) {
        tell(Report::Kind::notStarted, errno);
        _exit(1);
    }
    fcntl(failure[0], F_SETFD, FD_CLOEXEC);
    fcntl(failure[1], F_SETFD, FD_CLOEXEC);
    const pid_t guardian = getpid();
    const pid_t child = fork();
    if (child == 0)
        becomeHelper(helper, guardian, failure[1]);
    int error = child < 0 ? errno : 0;
    close(failure[1]);
    // The end of this pipe is the exec that succeeded.
    const bool isTold = child < 0 || read(failure[0], &error, sizeof error) > 0;
    close(failure[0]);
    close(output);
    close(errors);
    if (isTold) {
        tell(Report::Kind::notStarted, error);
        _exit(1);
    }
    // From both sides, for whichever comes first.
    setpgid(child, child);
    tell(Report::Kind::started, child);
    return child;
}

#ifdef __linux__

/// The parent of process `name`, a decimal number that a folder lists; 0 when it is gone.
int parentOf(const char *name)
{
    constexpr size_t longestName = sizeof(dirent64::d_name);
    char path[longestName + 16] = "/proc/";
    std::strncat(path, name, longestName);
    std::strncat(path, "/stat", sizeof path - std::strlen(path) - 1);
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    char text[512] = {};
    const auto size = read(file, text, sizeof text - 1);
    close(file);
    // "12 (a name) S 1 …": the name may hold anything, but no field after it has a bracket.
    const char *const bracket = size > 0 ? std::strrchr(text, ')') : nullptr;
    if (bracket == nullptr || std::strlen(bracket) < 4)
        return 0;
    int parent = 0;
    for (const char *digit = bracket + 4; *digit >= '0' && *digit <= '9'; ++digit)
        parent = parent * 10 + (*digit - '0');
    return parent;
}

/// Kills every child of the guardian: the helper, and what it has started and lost, in whatever group.
void killChildren()
{
    // Not with opendir(), which takes memory.
    const int folder = open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    alignas(dirent64) char block[4096];
    for (;;) {
        const ssize_t size = getdents64(folder, block, sizeof block);
        if (size <= 0)
            break;
        for (ssize_t at = 0; at < size;) {
            const auto *const entry = reinterpret_cast<const dirent64 *>(block + at);
            at += entry->d_reclen;
            if (entry->d_name[0] < '1' || entry->d_name[0] > '9' || parentOf(entry->d_name) != getpid())
                continue;
            int process = 0;
            for (const char *digit = entry->d_name; *digit != '\0'; ++digit)
                process = process * 10 + (*digit - '0');
            kill(process, SIGKILL);
        }
    }
    close(folder);
}

#else

/// Those in the helper's group are reached there. The system has no way to find others.
void killChildren() {}

#endif

/// Kills the helper and all that it has started, waits for their end and tells it.
[[noreturn]] void finish(pid_t helper)
{
    int status = 0;
    // The helper is not reaped yet, so that the number is still the group's.
    kill(-helper, SIGKILL);
    for (;;) {
        // Whose parent dies becomes the guardian's child, so that each round finds the next generation.
        killChildren();
        int ended = 0;
        const pid_t child = waitpid(-1, &ended, 0);
        if (child == helper)
            status = ended;
        if (child < 0 && errno != EINTR)
            break;
    }
    tell(Report::Kind::ended, status);
    _exit(0);
}

/// Reaps whoever ended; returns when nobody else has. Finishes when it was the helper.
void reap(pid_t helper)
{
    for (;;) {
        siginfo_t who = {};
        if (waitid(P_ALL, 0, &who, WEXITED | WNOHANG | WNOWAIT) != 0 || who.si_pid == 0)
            return;
        if (who.si_pid == helper)
            finish(helper);
        waitpid(who.si_pid, nullptr, 0);
    }
}

void obey(pid_t helper)
{
    char order = static_cast<char>(Order::killAll);
    const auto size = read(channel, &order, 1);
    if (size < 0 && errno == EINTR)
        return;
    if (size == 1 && order == static_cast<char>(Order::terminate))
        kill(-helper, SIGTERM);
    else
        finish(helper);
}

} // namespace

void run(const Helper &helper)
{
    takeDescriptors(helper);
    setpgid(0, 0);
#ifdef __linux__
    prctl(PR_SET_NAME, "lintora-guard");
    // What the helper starts and loses becomes the guardian's child.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
#endif
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGCHLD, &action, nullptr);
    const pid_t child = start(helper);

    // A child that ends, seen only while the guardian waits.
    sigset_t waiting;
    sigfillset(&waiting);
    sigdelset(&waiting, SIGCHLD);
    for (;;) {
        reap(child);
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(channel, &readable);
        if (pselect(channel + 1, &readable, nullptr, nullptr, nullptr, &waiting) > 0)
            obey(child);
    }
}

} // namespace HelperGuardian
