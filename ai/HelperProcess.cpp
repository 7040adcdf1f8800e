#include "ai/HelperProcess.h"

#include "ai/HelperGuardian.h"
#include "core/PlatformError.h"

#include <QFile>
#include <QScopeGuard>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <vector>

using namespace std::chrono_literals;
using HelperGuardian::Report;

namespace {

constexpr int lowest = STDERR_FILENO + 1; ///< Our own descriptors are never a closed standard stream's.

[[noreturn]] void throwSystemError(int error)
{
    throw PlatformError(qt_error_string(error));
}

/// A descriptor that closes itself.
class Descriptor
{
public:
    /// Takes over `descriptor`, or fails with errno when it is none.
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
        if (descriptor < 0)
            throwSystemError(errno);
        if (descriptor >= lowest)
            return;
        m_descriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, lowest);
        ::close(descriptor);
        if (m_descriptor < 0)
            throwSystemError(errno);
    }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int number() const { return m_descriptor; }
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

/// A file that takes what a helper prints. Appending lets us shorten it while the helper writes.
int openSink(const QString &path)
{
    return open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
}

/// Words as exec takes them: pointers into `words`, then a null.
std::vector<char *> pointers(QList<QByteArray> &words)
{
    std::vector<char *> result;
    for (QByteArray &word : words)
        result.push_back(word.data());
    result.push_back(nullptr);
    return result;
}

QList<QByteArray> argumentsOf(const QString &program, const QStringList &arguments)
{
    QList<QByteArray> words = {QFile::encodeName(program)};
    for (const QString &argument : arguments)
        words.append(QFile::encodeName(argument));
    return words;
}

/// Our environment, but for how idle threads wait: where there are fewer free processors than threads, those that spin
/// keep the others from working.
QList<QByteArray> environmentOfHelpers()
{
    QList<QByteArray> variables;
    for (char *const *variable = environ; *variable != nullptr; ++variable)
        variables.append(*variable);
    if (!qEnvironmentVariableIsSet("OMP_WAIT_POLICY"))
        variables.append("OMP_WAIT_POLICY=passive");
    return variables;
}

} // namespace

HelperProcess::HelperProcess(Command command)
    : m_command(std::move(command))
{}

HelperProcess::~HelperProcess()
{
    close();
}

void HelperProcess::start()
{
    const Descriptor output(openSink(m_command.output));
    const Descriptor errors(openSink(m_command.errors));
    fork(output.number(), errors.number());
    // The guardian's first word is whether there is a helper.
    while (m_channel >= 0 && m_error == 0 && !m_isStarted)
        receive(1min);
    if (!m_isStarted)
        throwSystemError(m_error != 0 ? m_error : ECHILD);
}

void HelperProcess::fork(int output, int errors)
{
#ifdef SOCK_CLOEXEC
    // At once, so that no program that somebody else starts keeps our end open.
    constexpr int type = SOCK_STREAM | SOCK_CLOEXEC;
#else
    constexpr int type = SOCK_STREAM;
#endif
    int pair[2] = {-1, -1};
    if (socketpair(AF_UNIX, type, 0, pair) != 0)
        throwSystemError(errno);
    Descriptor ours(pair[0]);
    const Descriptor theirs(pair[1]);
#ifdef SO_NOSIGPIPE
    fcntl(ours.number(), F_SETFD, FD_CLOEXEC);
    const int on = 1;
    setsockopt(ours.number(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
    QList<QByteArray> arguments = argumentsOf(m_command.program, m_command.arguments);
    QList<QByteArray> environment = environmentOfHelpers();
    const auto argumentPointers = pointers(arguments);
    const auto environmentPointers = pointers(environment);
    const HelperGuardian::Helper helper{.program = argumentPointers.front(),
                                        .arguments = argumentPointers.data(),
                                        .environment = environmentPointers.data(),
                                        .channel = theirs.number(),
                                        .output = output,
                                        .errors = errors};
    // No handler of ours may run in the guardian.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_guardian = ::fork();
    if (m_guardian == 0)
        HelperGuardian::run(helper);
    const int error = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (m_guardian < 0)
        throwSystemError(error);
    const std::lock_guard lock(m_mutex);
    m_channel = ours.release();
}

bool HelperProcess::isRunning()
{
    return m_isStarted && !waitForEnd(0ms);
}

bool HelperProcess::waitForEnd(std::chrono::milliseconds longest)
{
    return m_channel < 0 || receive(longest);
}

void HelperProcess::terminate()
{
    send(static_cast<char>(HelperGuardian::Order::terminate));
}

void HelperProcess::kill()
{
    send(static_cast<char>(HelperGuardian::Order::killAll));
    while (m_channel >= 0)
        receive(1min);
}

void HelperProcess::stop()
{
    constexpr auto grace = 2s;
    constexpr auto poll = 20ms;
    terminate();
    const auto deadline = std::chrono::steady_clock::now() + grace;
    while (!waitForEnd(poll)) {
        if (std::chrono::steady_clock::now() >= deadline)
            return kill();
    }
}

bool HelperProcess::hasSucceeded() const
{
    return m_status == 0;
}

void HelperProcess::send(char order)
{
#ifdef MSG_NOSIGNAL
    constexpr int flags = MSG_NOSIGNAL | MSG_DONTWAIT;
#else
    constexpr int flags = MSG_DONTWAIT;
#endif
    const std::lock_guard lock(m_mutex);
    // A guardian that is gone has nothing to do any more.
    if (m_channel >= 0)
        ::send(m_channel, &order, 1, flags);
}

bool HelperProcess::receive(std::chrono::milliseconds longest)
{
    pollfd waited = {m_channel, POLLIN, 0};
    const int ready = poll(&waited, 1, static_cast<int>(longest.count()));
    if (ready == 0 || (ready < 0 && errno == EINTR))
        return false;
    Report report;
    const auto size = recv(m_channel, &report, sizeof report, MSG_WAITALL);
    if (size < 0 && errno == EINTR)
        return false;
    if (size != sizeof report) {
        close();
        return true;
    }
    switch (report.kind) {
    case Report::Kind::notStarted:
        m_error = report.value;
        break;
    case Report::Kind::started:
        m_isStarted = true;
        break;
    case Report::Kind::ended:
        m_status = report.value;
        break;
    }
    if (report.kind == Report::Kind::started)
        return false;
    close();
    return true;
}

void HelperProcess::close()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_channel < 0)
            return;
        ::close(std::exchange(m_channel, -1));
    }
    while (waitpid(m_guardian, nullptr, 0) < 0 && errno == EINTR) {
    }
}
