#pragma once

#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

/// A thread that makes its round whenever it is woken, and once more after the pause that the last round asked for.
///
/// Rounds follow each other and never overlap. Calls for a round that come while one is under way are answered by a
/// single one after it.
class RoundThread
{
public:
    using Pause = std::optional<std::chrono::milliseconds>; ///< Absent: until woken.

    /// `round` runs on the thread, must not throw, and returns the pause to the next one. The first begins when woken.
    explicit RoundThread(std::function<Pause()> round);

    /// Waits for a round under way; no other is made.
    ~RoundThread();
    Q_DISABLE_COPY_MOVE(RoundThread)

    void wake(); ///< From any thread.

    /// Waits until a round that began after this call has ended. From any thread but this one.
    void finishRound();

private:
    void run();

    std::function<Pause()> m_round;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned long long m_called = 0;   ///< How often a round was called for.
    unsigned long long m_answered = 0; ///< How many of these calls a finished round has answered.
    bool m_stopping = false;
    std::thread m_thread; ///< Last, so that it finds the rest in place.
};
