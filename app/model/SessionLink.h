#pragma once

#include "app/model/SessionKeeper.h"
#include "app/model/ai/CueOwnership.h"

/// The session that is shared with the workflow extension: which states are written to it, and what becomes of the
/// extension's versions.
///
/// ```
///   open ── opening ── its version arrives ── shared ──┬── a version arrives ── taken up, as a step
///                                                      └── while the cues have an owner ── held until they are free
/// ```
/// The states from its opening on are the shared session's. Undoing beyond it leads to another session, which is none
/// of the extension's business.
class SessionLink : public QObject
{
    Q_OBJECT

public:
    SessionLink(SessionKeeper &keeper, EditedSession &session, const CueOwnership &owner);

    /// Watches that file in place of any other. Its version is brought in when it arrives.
    void open(const QString &file);

    void save(); ///< Has the state written, when it is to be. Returns at once.

Q_SIGNALS:
    void opened(); ///< The version of a session that was opened is in place.
    void freed();  ///< Saving was held back, and can go on.

private:
    /// A version that arrived while long work owned the cues.
    struct Held
    {
        LintoraSession version;
        LintoraSession state; ///< As it was then.
    };

    bool isShared() const;
    void take(const LintoraSession &version);
    void takeHeld();
    void keepOverruled(const LintoraSession &version);

    SessionKeeper &m_keeper;
    EditedSession &m_session;
    const CueOwnership &m_owner;
    bool m_isOpening = false; ///< Whether the version of an opened session has not arrived.
    std::optional<Held> m_held;
};
