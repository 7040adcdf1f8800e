#pragma once

#include <QObject>

#include <exception>
#include <functional>
#include <mutex>

/// What became of the newest save: noted on the thread that saves, known to whoever waits for it, and told on the main
/// thread where it is news.
class SaveOutcome
{
public:
    /// Both are called from the event loop, as long as `context` lives. `failed` gets the reason, and gets each once
    /// until another comes up or a save succeeds; `recovered` is called when a save succeeds after a failure.
    SaveOutcome(QObject *context, std::function<void(const QString &description)> failed,
                std::function<void()> recovered);

    void noteSuccess();
    void noteFailure(); ///< The error that is being handled. It is a std::exception.

    void throwFailure(); ///< @throws what the newest save failed with, if it did. From any thread.

private:
    void note(std::exception_ptr failure, const QString &description);

    QObject *m_context;
    std::function<void(const QString &)> m_failed;
    std::function<void()> m_recovered;
    QString m_reported; ///< Why saving fails, as last told; empty while it does not. Used on the saving thread only.

    std::mutex m_mutex;
    std::exception_ptr m_failure; ///< Null when the newest save did not fail. Guarded.
};
