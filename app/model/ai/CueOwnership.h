#pragma once

#include "app/model/BackgroundTask.h"
#include "app/model/EditedSession.h"

/// Long work that owns the cues: while it runs, nothing else may change them. One at a time.
///
/// Lives on the main thread.
class CueOwnership : public QObject
{
    Q_OBJECT

public:
    explicit CueOwnership(EditedSession &session);

    bool isBusy() const { return m_isBusy; } ///< Whether the cues have an owner.

    /// Whether the cues have an owner. Then `sentence` is said.
    bool refuses(const QString &sentence);

    /// Runs `operation(job, report)` on a worker, as the owner of the cues. `first` is what it is doing until it
    /// reports. Refused, and false, while there is another owner.
    ///
    /// The cues are free again however it ends, done, refused or cancelled, and at the latest with the program. Then
    /// `take(result)` puts a result in place, on the cues that the operation began with and as one step of the history.
    template <class JobType = Job, class Operation, class Take>
    bool run(const QString &first, Operation operation, Take take)
    {
        if (!claim())
            return false;
        m_task.run<JobType>(
            first, std::move(operation),
            [this, take = std::move(take)](auto result) { release([&] { take(std::move(result)); }); },
            [this](const Failure &failure) { release([&] { Q_EMIT refused(failure); }); }, [this] { release([] {}); });
        return true;
    }

    void cancel(); ///< Ends the work, and leaves the cues as they are.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void busyChanged();
    void released();                      ///< The cues are free, and everybody has heard of it.
    void refused(const Failure &failure); ///< Why something was not done.

private:
    bool claim();
    void release(const std::function<void()> &take);

    EditedSession &m_session;
    bool m_isBusy = false;
    /// One language server at a time: the next one waits until a cancelled one has left the memory.
    BackgroundTask m_task{BackgroundTask::Order::newestAfterTheOld};
};
