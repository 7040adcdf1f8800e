#pragma once

#include "store/LintoraSession.h"
#include "store/RoundThread.h"
#include "store/SaveOutcome.h"

#include <QObject>

#include <chrono>
#include <mutex>

/// A session file that another program reads and writes too. Both replace whole versions.
///
/// The file is looked at every 0.4 s. Each new version that can be read is delivered once; one that cannot be read is
/// passed over. Own states are written whole, and are on the disk when they are written. Both happen on a thread of its
/// own.
///
/// Neither side hands back what came from the other: a state that equals the agreed one, which is the version delivered
/// or the state written last, is not written, whatever the bytes in the file; and what was written here is not
/// delivered.
///
/// Where both change at once, the local change wins: from announceChange() or save() until the state is written no
/// version is delivered, and the versions that it takes the place of are reported by overruled(). A state that cannot
/// be written is tried again at every look.
///
/// Lives on the main thread.
class SessionFile : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds usualInterval{400};

    /// Watches the file at `path`, which need not exist, from now on.
    explicit SessionFile(QString path, std::chrono::milliseconds interval = usualInterval, QObject *parent = nullptr);

    /// Writes what still waits. Nobody is told when that fails: call flush() before.
    ~SessionFile() override;

    const QString &path() const { return m_path; }

    /// Says that the state has changed here and that save() follows.
    void announceChange();

    /// Says that no save() follows after all.
    void retractChange();

    /// Keeps `state` for writing, unless it equals the agreed one, and returns at once.
    void save(const LintoraSession &state);

    /// Says what became of the version just delivered, where that is not the version itself: `state` is the agreed one.
    void adopt(const LintoraSession &state);

    /// Writes what waits and looks at the file now; a new version is delivered before it returns.
    void refresh();

    /// Writes what still waits, before it returns.
    /// @throws ConversionError "字幕会话过大。", PlatformError when the newest state could not be written.
    void flush();

Q_SIGNALS:
    /// The other program has put a new version in place.
    void arrived(const LintoraSession &session);

    /// A local change has taken the place of `session`, which the other program had written and which was not
    /// delivered.
    void overruled(const LintoraSession &session);

    /// A state could not be written, for the reason given. Said once, until another reason comes up or a write
    /// succeeds.
    void failed(const QString &description);

    /// After a failure, a state was written.
    void recovered();

private:
    struct Version
    {
        QByteArray bytes;
        LintoraSession session;
    };

    RoundThread::Pause round();
    void write();
    void replaceFile(const LintoraSession &state);
    void look();
    std::optional<Version> newVersion();
    void deliver();

    const QString m_path;
    const std::chrono::milliseconds m_interval;
    QByteArray m_lastBytes;    ///< Last valid bytes seen or written. Used on the thread only, like the next one.
    QByteArray m_refusedBytes; ///< Last bytes seen that are no session, so that they are not decoded at every look.

    std::mutex m_mutex;                      ///< Guards what follows. Not held while files are touched.
    std::optional<LintoraSession> m_waiting; ///< The newest local state; not yet known whether it is a change.
    bool m_isWriting = false;                ///< Whether the thread has taken a state from m_waiting.
    bool m_isChanging = false;               ///< Whether a change was announced whose state has not come.
    std::optional<LintoraSession> m_arrival; ///< The newest version of the other program, not yet delivered.
    std::optional<LintoraSession> m_agreed;  ///< What both programs have; absent until one has written.

    SaveOutcome m_outcome;

    RoundThread m_thread; ///< Last, so that it ends first.
};
