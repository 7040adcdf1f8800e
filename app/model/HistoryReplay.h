#pragma once

#include "app/model/EditHistory.h"
#include "app/model/SessionChange.h"

/// A history made again from what happened to it. A step costs what it changes, not what there is: no state is laid out
/// that nobody asks for.
///
/// What is told may be damaged, or made for another history.
class HistoryReplay
{
public:
    /// `first` has tracks.
    explicit HistoryReplay(const LintoraSession &first);

    /// What EditHistory's operations of these names do, with the current state changed.
    /// @throws PlatformError when that state has not what the change names
    void record(const SessionChange::Change &change, const QString &title);
    void amend(const SessionChange::Change &change, const QString &title);
    void insertBefore(const SessionChange::Change &change, const QString &title);

    /// @throws PlatformError when there is none
    void undo();
    void redo();

    LintoraSession current() const; ///< Laid out.
    EditHistory history() const { return EditHistory(m_states); }

private:
    FrozenSession changed(const SessionChange::Change &change) const;
    std::shared_ptr<const FrozenTrack> changed(const SessionChange::Track &track) const;
    std::shared_ptr<const FrozenCues> changed(const SessionChange::Cues &cues) const;
    std::shared_ptr<const FrozenCues> find(qint64 list) const;

    FrozenHistory m_states;
};
