#pragma once

#include "app/model/EditGrouping.h"
#include "app/model/EditHistory.h"

#include <QObject>

#include <functional>
#include <optional>

/// How the cues of a track were before a text tool, and how the tool left them.
struct CueRestore
{
    QUuid track;
    QList<Subtitle> before;
    QList<Subtitle> after;
};

/// The session that is worked on: its newest state, and the steps that led to it.
///
/// Lives on the main thread.
class EditedSession : public QObject
{
    Q_OBJECT

public:
    explicit EditedSession(EditHistory history); ///< Goes on where `history` stands.

    const LintoraSession &state() const { return m_state; } ///< In the order of SessionTracks. Shares its data.
    const EditHistory &history() const { return m_history; }

    /// Puts `next` in the place of what stands; nothing when it is the same. `title` says what is done, for those who
    /// undo it.
    void replace(LintoraSession next, const QString &title, EditStep step = EditStep::record);

    /// The same for the cues of the selected track.
    void replaceItems(const QList<Subtitle> &items, const QString &title);

    /// Calls `changes`, and makes one step of all that it changes.
    void asOneStep(const std::function<void()> &changes);

    /// Changes of the kind EditStep::gesture between these two are one step. Anything else that happens meanwhile ends
    /// it.
    void beginGesture() { m_grouping.beginGesture(); }
    void endGesture() { m_grouping.endGesture(); }

    void undo(); ///< There must be a step.
    void redo(); ///< There must be a step.

    /// Puts `state` between the current one and the one before, so that undoing once leads to it.
    void insertBefore(const LintoraSession &state, const QString &title);

    /// The current state, and those that follow it, are beyond the mark. A mark that no undoing and redoing leads to
    /// any more is gone.
    void mark() { m_history.mark(); }

    /// Whether the track's cues still are as the tool left them.
    bool isRestorable(const CueRestore &restore) const;

    /// Puts the cues back, in their own track and as a step of its own. It must be restorable.
    void restore(const CueRestore &restore);

Q_SIGNALS:
    void aboutToLoad(const LintoraSession &next);              ///< Another session is about to be brought in.
    void changed(const LintoraSession &before, bool isLoaded); ///< `isLoaded`: another session was brought in.
    void historyChanged();                                     ///< Steps have come or gone, without a change.

    /// The history has gone on, with `state`, and `title` where the move takes one. Comes before what it changes is
    /// told.
    void moved(HistoryMove move, const QString &title, const LintoraSession &state);

private:
    void record(const QString &title);
    void amend(const QString &title);
    void step(const LintoraSession &(EditHistory::*direction)(), HistoryMove move);

    LintoraSession m_state;
    EditHistory m_history;
    EditGrouping m_grouping;
};
