#include "app/model/EditedSession.h"

#include "app/model/SessionTracks.h"

#include <QScopeGuard>

#include <utility>

using namespace Qt::StringLiterals;

EditedSession::EditedSession(EditHistory history)
    : m_state(history.current())
    , m_history(std::move(history))
{}

void EditedSession::replace(LintoraSession next, const QString &title, EditStep step)
{
    if (next == m_state)
        return;
    if (step == EditStep::load)
        Q_EMIT aboutToLoad(next);
    const LintoraSession before = std::exchange(m_state, std::move(next));
    if (m_grouping.joinsLast(step))
        amend(step == EditStep::amend ? QString() : title);
    else
        record(title);
    Q_EMIT changed(before, step == EditStep::load);
}

void EditedSession::record(const QString &title)
{
    m_history.record(m_state, title);
    Q_EMIT moved(HistoryMove::record, title, m_state);
}

void EditedSession::amend(const QString &title)
{
    m_history.amend(m_state, title);
    Q_EMIT moved(HistoryMove::amend, title, m_state);
}

void EditedSession::replaceItems(const QList<Subtitle> &items, const QString &title)
{
    LintoraSession next = m_state;
    next.items = items;
    replace(SessionTracks::committed(std::move(next)), title);
}

void EditedSession::asOneStep(const std::function<void()> &changes)
{
    m_grouping.beginGroup();
    const auto end = qScopeGuard([this] { m_grouping.endGroup(); });
    changes();
}

void EditedSession::undo()
{
    step(&EditHistory::undo, HistoryMove::undo);
}

void EditedSession::redo()
{
    step(&EditHistory::redo, HistoryMove::redo);
}

void EditedSession::step(const LintoraSession &(EditHistory::*direction)(), HistoryMove move)
{
    endGesture();
    const LintoraSession before = std::exchange(m_state, (m_history.*direction)());
    const QString title = move == HistoryMove::undo ? m_history.redoTitle() : m_history.undoTitle();
    Q_EMIT moved(move, title, m_state);
    // What changed is to be seen, also when another track was selected in the meantime.
    if (const auto track = SessionTracks::changedTrack(before, m_state)) {
        m_state = SessionTracks::selecting(std::move(m_state), *track);
        amend({});
    }
    Q_EMIT changed(before, false);
}

void EditedSession::insertBefore(const LintoraSession &state, const QString &title)
{
    const LintoraSession inserted = SessionTracks::normalized(state);
    m_history.insertBefore(inserted, title);
    Q_EMIT moved(HistoryMove::insertBefore, title, inserted);
    Q_EMIT historyChanged();
}

bool EditedSession::isRestorable(const CueRestore &restore) const
{
    return SessionTracks::isSelectable(m_state, restore.track) &&
           m_state.tracks->at(*SessionTracks::indexOf(m_state, restore.track)).items == restore.after;
}

void EditedSession::restore(const CueRestore &restore)
{
    LintoraSession next = SessionTracks::selecting(m_state, restore.track);
    next.items = restore.before;
    replace(SessionTracks::committed(std::move(next)), u"恢复文字"_s);
}
