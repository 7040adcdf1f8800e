#pragma once

/// The process between us and a helper program, which sees to it that nothing of the helper is left behind.
///
/// It is forked from ours and does nothing but watch. When the helper ends, when it is told to, or when our end of the
/// channel closes, which is what the system does however we end, it kills what the helper has started and is still
/// there. It calls only what is allowed between the fork of a program with threads and an exec.
namespace HelperGuardian {

/// What the guardian reads from the channel: one byte each. Its end means KillAll.
enum class Order : char
{
    terminate = 'T', ///< SIGTERM to the helper and those it has started.
    killAll = 'K',   ///< SIGKILL to all of them.
};

/// What the guardian writes to the channel. NotStarted or Started comes first, Ended when nothing is left; then it
/// closes the channel and ends.
struct Report
{
    enum class Kind : int
    {
        notStarted, ///< `value` is the errno of the step that failed.
        started,    ///< `value` is the helper's process id.
        ended,      ///< `value` is the helper's status as waitpid gives it.
    };
    Kind kind = Kind::notStarted;
    int value = 0;
};

/// What the guardian is to run. All descriptors are 3 or higher and open.
struct Helper
{
    const char *program = nullptr; ///< Path of the executable.
    char *const *arguments = nullptr;
    char *const *environment = nullptr;
    int channel = -1; ///< The guardian's end of a stream socket pair.
    int output = -1;  ///< Takes the helper's standard output.
    int errors = -1;  ///< Takes its standard error.
};

/// The guardian's whole life, in a process that was forked with every signal blocked.
[[noreturn]] void run(const Helper &helper);

} // namespace HelperGuardian
