#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <mutex>

/// A helper program that runs as a child of ours and outlives nobody.
///
/// It is killed, together with all that it has started, when this object goes, when the helper itself ends before what
/// it has started, and when our program ends, SIGKILL included (HelperGuardian). It does not matter which thread
/// starts it. One thread uses the object; terminate() alone may be called from others meanwhile.
class HelperProcess
{
public:
    struct Command
    {
        QString program; ///< Path of the executable.
        QStringList arguments;
        QString output; ///< Path of the file that takes standard output; what was in it is lost.
        QString errors; ///< The same for standard error. May be the same file.
    };

    explicit HelperProcess(Command command);
    ~HelperProcess();
    HelperProcess(const HelperProcess &) = delete;
    HelperProcess &operator=(const HelperProcess &) = delete;

    /// Starts the program with an empty standard input. Once. @throws PlatformError when it cannot be started
    void start();

    bool isRunning(); ///< Started and not yet known to have ended.

    /// Waits for the end of the helper and of all that it has started, `longest` at most. Whether it has come.
    bool waitForEnd(std::chrono::milliseconds longest);

    /// Asks the helper to end (SIGTERM). Nothing happens when it is not running.
    void terminate();

    /// Kills the helper and all that it has started (SIGKILL), and waits for their end.
    void kill();

    /// Ends it in the usual way: terminate(), then kill() when it is still there after two seconds.
    void stop();

    /// Whether it has ended by itself with exit status 0.
    bool hasSucceeded() const;

private:
    /// Forks the guardian, which then has the other end of the channel.
    void fork(int output, int errors);

    void send(char order);

    /// Takes the guardian's next report if it comes within `longest`. Whether nothing more is to come.
    bool receive(std::chrono::milliseconds longest);

    /// Lets the guardian go. It kills what is left, and has ended when this returns.
    void close();

    Command m_command;
    std::mutex m_mutex; ///< Guards m_channel against being closed by one thread while another sends.
    int m_channel = -1; ///< Our end of the channel to the guardian; -1 before the start and after the end.
    int m_guardian = 0; ///< Its process id.
    bool m_isStarted = false;
    int m_error = 0;   ///< What kept the helper from starting, an errno.
    int m_status = -1; ///< As waitpid gives it; -1 until the helper has ended.
};
