#pragma once

#include "app/model/FrozenSession.h"

#include <optional>

/// How a history goes on, by the operation that does it.
enum class HistoryMove
{
    record,
    amend,
    insertBefore,
    undo,
    redo
};

/// The states that a session went through, to go back and forth between. Without a limit.
///
/// ```
///   first ── record ── record ── current ── undone ── undone
///                                   ◀ undo   redo ▶
/// ```
/// States share what did not change: a state that differs from its neighbour in one cue takes some kilobytes, however
/// many cues there are. A recorded state makes the undone ones unreachable.
///
/// The cues of a state are those of its tracks; a state without tracks has none.
class EditHistory
{
public:
    explicit EditHistory(const LintoraSession &first);
    explicit EditHistory(FrozenHistory states);

    const LintoraSession &current() const { return m_current; }
    bool canUndo() const { return !m_states.past.empty(); }
    bool canRedo() const { return !m_states.future.empty(); }
    size_t pastCount() const { return m_states.past.size(); } ///< How often undo() can be called.

    const QString &undoTitle() const
    {
        return m_states.current.title;
    }                          ///< What undo() takes back; empty when it cannot.
    QString redoTitle() const; ///< What redo() does again; empty when it cannot.

    /// `state` follows the current one; `title` says what was done.
    void record(const LintoraSession &state, const QString &title = {});

    /// `state` takes the current one's place: what changed is no step of its own. The undone states stay. An empty
    /// `title` leaves the one of the step.
    void amend(const LintoraSession &state, const QString &title = {});

    /// Puts `state` between the current one and the one before, so that undoing once leads to it.
    void insertBefore(const LintoraSession &state, const QString &title = {});

    /// The current state, and those that follow it, are beyond the mark. It is gone when no undo() and redo() leads to
    /// the marked state any more.
    void mark() { m_mark = m_states.past.size(); }
    bool isBeyondMark() const { return m_mark && m_states.past.size() >= *m_mark; }

    const LintoraSession &undo(); ///< Goes back and returns the state. There must be one.
    const LintoraSession &redo(); ///< Goes forth and returns the state. There must be one.

private:
    using Cues = std::shared_ptr<const FrozenCues>;

    FrozenSession freeze(const LintoraSession &state) const;
    std::shared_ptr<const FrozenTrack> freeze(const SubtitleTrack &track) const;
    Cues freeze(const QList<Subtitle> &cues, const FrozenTrack *before, const SubtitleTrack *original) const;
    LintoraSession thaw(const FrozenSession &session) const;
    QList<Subtitle> thaw(const Cues &cues) const;
    void makeCurrent(FrozenSession frozen, const LintoraSession &state);

    FrozenHistory m_states;
    LintoraSession m_current;
    std::optional<size_t> m_mark; ///< Of past states at the marked one.
};
