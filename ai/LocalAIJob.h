#pragma once

#include "core/Check.h"
#include "core/Job.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>

class HelperProcess;

/// The cancellable handle of one AI action: what its cancel button and the program's end reach.
///
/// The action runs on a worker and keeps here the network request and the helper process that run for it, one of each
/// at most. Cancelling aborts the request and asks the process to end; whoever waits for them sees that the job is
/// cancelled. setRequest, clearRequest and what a Job does may be called from any thread, the rest from the worker.
class LocalAIJob : public Job
{
public:
    /// Takes note of the request now running in place of the one before. `abort` ends it; it is called once at most, by
    /// whoever cancels, or at once when the job is cancelled already. It must be safe to call from any thread and not
    /// throw. When this returns, the abort of the request before is neither running nor called any more.
    void setRequest(std::function<void()> abort);

    /// The request is over, or its abort must not be called any more.
    void clearRequest();

    /// Starts `process` in the place of the one before. It must stay until stop() or the job's end.
    /// @throws Cancelled, without starting it, when the job is cancelled; PlatformError when it cannot be started
    void launch(HelperProcess &process);

    /// Ends the process that was launched, if it still runs (HelperProcess::stop), and forgets it.
    void stop();

    /// What run() hears of a helper while it runs: what it has printed since the last time, whole lines or not.
    using Output = std::function<void(QByteArrayView)>;

    /// Runs a helper to its end and returns what it has printed on standard output, 32 MiB at most.
    ///
    /// `meanwhile` is called some times a second while it runs, and once it has ended well.
    ///
    /// Its two streams go into files in `directory`, which are gone when this returns or throws; so is the helper.
    /// @throws Cancelled; ConversionError when it does not end with status 0, with the last line of its standard error
    /// as the detail, or prints too much; PlatformError when it cannot be started
    QByteArray run(const QString &executable, const QStringList &arguments, const QString &directory,
                   const Output &output = {}, const Check &meanwhile = {});

    /// The last line that the helper of the latest run wrote on standard error; empty when there was none.
    const QString &lastWords() const { return m_lastWords; }

    static constexpr qint64 largestOutput = 32 * 1024 * 1024; ///< Bytes that a helper may print on standard output.

private:
    void replaceRequest(std::unique_ptr<OnCancel> request);

    std::mutex m_mutex; ///< Guards m_request; never held while calling out.
    std::unique_ptr<OnCancel> m_request;
    HelperProcess *m_process = nullptr;
    std::unique_ptr<OnCancel> m_processEnd; ///< Asks m_process to end.
    QString m_lastWords;
};
