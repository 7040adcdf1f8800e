#include "app/model/SessionLink.h"

#include "app/model/SessionTracks.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString title = u"悬浮字幕更新"_s;

} // namespace

SessionLink::SessionLink(SessionKeeper &keeper, EditedSession &session, const CueOwnership &owner)
    : m_keeper(keeper)
    , m_session(session)
    , m_owner(owner)
{
    connect(&keeper, &SessionKeeper::arrived, this, &SessionLink::take);
    connect(&keeper, &SessionKeeper::overruled, this, &SessionLink::keepOverruled);
    connect(&owner, &CueOwnership::released, this, &SessionLink::takeHeld);
    connect(&session, &EditedSession::changed, this, [this] {
        // Only what will be written: until then the session's own versions wait.
        if (isShared() && !m_held)
            m_keeper.announceChange();
    });
}

void SessionLink::open(const QString &file)
{
    m_isOpening = true;
    m_keeper.watchSession(file);
}

bool SessionLink::isShared() const
{
    return m_keeper.sessionURL() && !m_isOpening && m_session.history().isBeyondMark();
}

void SessionLink::save()
{
    // A version that waits for the end of long work must not be written over.
    if (isShared() && !m_held)
        m_keeper.saveSession(m_session.state());
    else
        m_keeper.retractChange();
}

void SessionLink::take(const LintoraSession &version)
{
    if (m_owner.isBusy()) {
        m_held = Held{.version = version, .state = m_session.state()};
        return;
    }
    const LintoraSession taken = SessionTracks::normalized(version);
    // Agreed before it is in place: whoever hears of it may change it, which then has to be written.
    m_keeper.adopt(taken);
    const bool isOpening = std::exchange(m_isOpening, false);
    const bool wasShared = isShared();
    m_session.replace(taken, title, isOpening ? EditStep::load : EditStep::record);
    if (isOpening || !wasShared)
        m_session.mark();
    if (isOpening)
        Q_EMIT opened();
}

/// Takes up a version that had to wait, unless the session has become another one meanwhile: then it lies one step
/// back.
void SessionLink::takeHeld()
{
    const auto held = std::exchange(m_held, std::nullopt);
    if (!held)
        return;
    // Which track is looked at makes no other session.
    const LintoraSession &state = m_session.state();
    if (state.tracks == held->state.tracks && state.source == held->state.source)
        take(held->version);
    else
        keepOverruled(held->version);
    Q_EMIT freed();
}

/// A version whose place our own change has taken can be had back by undoing once.
void SessionLink::keepOverruled(const LintoraSession &version)
{
    m_session.insertBefore(version, title);
}
