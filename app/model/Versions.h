#pragma once

#include "app/model/SessionDifference.h"
#include "app/model/ai/CueOwnership.h"
#include "store/KeptSessions.h"
#include "store/RoundThread.h"

#include <mutex>
#include <vector>

/// States of the session that are kept by themselves, to go back to when undoing is too far: what differs from now, and
/// one of them brought back as one step.
///
/// Kept are, on a thread of its own: the session after every ten minutes in which it was changed, and as it was before
/// a step that changed ten cues or more or brought or took a track: an import, a separation, what was recognised,
/// translated, replaced. Going back and forth in the history keeps none.
///
/// Lives on the main thread.
class Versions : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    static constexpr KeptSessions::Limits limits{.count = 48, .bytes = 67'108'864};
    static constexpr std::chrono::minutes interval{10};
    static constexpr qsizetype manyCues = 10; ///< Changed by one step.

    struct Version
    {
        KeptSessions::Entry entry;
        std::optional<qsizetype> cues; ///< On all tracks; absent when it cannot be read.
        SessionDifference difference;  ///< What bringing it back would do to the session as it is.
    };

    /// Keeps in `folder`, which need not exist.
    Versions(
        EditedSession &session, CueOwnership &owner, const QString &folder,
        Clock clock = [] { return QDateTime::currentDateTime(); });
    ~Versions() override; ///< Keeps what still waits.

    bool isShown() const { return m_isShown; }
    void show(); ///< Begins to read them.
    void close();

    const QList<Version> &versions() const { return m_versions; } ///< Newest first; of the session as it is.
    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why something was not done.

    void restore(qsizetype version); ///< Brings that one back, as one step.
    void finishKeeping();            ///< Waits until all that was to be kept is.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void shownChanged();
    void versionsChanged();
    void statusChanged();
    void done(const QString &message);    ///< What has become of the session.
    void refused(const Failure &failure); ///< A version could not be kept.

private:
    /// A step that may be one to keep the session before; or, without `after`, a session to be kept.
    struct Candidate
    {
        LintoraSession before;
        std::optional<LintoraSession> after;
        QString title;
        QDateTime at;
    };

    void follow(HistoryMove move, const QString &title, const LintoraSession &state);
    void consider(const Candidate &candidate);
    void keepWaiting();
    void read();
    void setStatus(const QString &status, bool isRefused = false);

    EditedSession &m_session;
    CueOwnership &m_owner;
    const Clock m_clock;
    const KeptSessions m_folder;
    LintoraSession m_last;            ///< Before the next step.
    std::optional<QDateTime> m_since; ///< Since when changes have not been kept.
    bool m_isShown = false;
    QList<Version> m_versions;
    QString m_status;
    bool m_isRefused = false;

    std::mutex m_mutex;
    std::vector<Candidate> m_waiting; ///< Guarded.

    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
    RoundThread m_thread; ///< Last, so that it ends first.
};
