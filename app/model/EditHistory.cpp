#include "app/model/EditHistory.h"

#include "app/model/SessionTracks.h"

#include <algorithm>
#include <utility>

namespace {

bool isShared(const QList<Subtitle> &a, const QList<Subtitle> &b)
{
    return a.constData() == b.constData() && a.size() == b.size();
}

} // namespace

EditHistory::EditHistory(const LintoraSession &first)
{
    makeCurrent(freeze(first), first);
}

EditHistory::EditHistory(FrozenHistory states)
{
    const LintoraSession current = thaw(states.current); // before there are others that it could share with
    m_states = std::move(states);
    m_current = current;
}

QString EditHistory::redoTitle() const
{
    return m_states.future.empty() ? QString() : m_states.future.back().title;
}

void EditHistory::record(const LintoraSession &state, const QString &title)
{
    FrozenSession frozen = freeze(state);
    frozen.title = title;
    if (m_mark && m_states.past.size() < *m_mark)
        m_mark.reset();
    m_states.past.push_back(std::move(m_states.current));
    m_states.future.clear();
    makeCurrent(std::move(frozen), state);
}

void EditHistory::amend(const LintoraSession &state, const QString &title)
{
    FrozenSession frozen = freeze(state);
    frozen.title = title.isEmpty() ? m_states.current.title : title;
    makeCurrent(std::move(frozen), state);
}

void EditHistory::insertBefore(const LintoraSession &state, const QString &title)
{
    FrozenSession frozen = freeze(state);
    // What can be undone to the first state is the step to the current one.
    (m_states.past.empty() ? m_states.current : frozen).title = title;
    m_states.past.push_back(std::move(frozen));
}

const LintoraSession &EditHistory::undo()
{
    FrozenSession target = std::move(m_states.past.back());
    m_states.past.pop_back();
    const LintoraSession state = thaw(target);
    m_states.future.push_back(std::move(m_states.current));
    makeCurrent(std::move(target), state);
    return m_current;
}

const LintoraSession &EditHistory::redo()
{
    FrozenSession target = std::move(m_states.future.back());
    m_states.future.pop_back();
    const LintoraSession state = thaw(target);
    m_states.past.push_back(std::move(m_states.current));
    makeCurrent(std::move(target), state);
    return m_current;
}

void EditHistory::makeCurrent(FrozenSession frozen, const LintoraSession &state)
{
    m_states.current = std::move(frozen);
    m_current = state;
}

FrozenSession EditHistory::freeze(const LintoraSession &state) const
{
    FrozenSession session{.rest = SessionTracks::withoutCues(state), .title = {}, .tracks = {}};
    for (const SubtitleTrack &track : state.tracks.value_or(QList<SubtitleTrack>()))
        session.tracks.push_back(freeze(track));
    return session;
}

std::shared_ptr<const FrozenTrack> EditHistory::freeze(const SubtitleTrack &track) const
{
    const FrozenTrack *before = nullptr;
    const SubtitleTrack *original = nullptr;
    for (size_t i = 0; i < m_states.current.tracks.size(); ++i) {
        if (m_states.current.tracks[i]->rest.id != track.id)
            continue;
        before = m_states.current.tracks[i].get();
        original = &m_current.tracks->at(qsizetype(i));
        // Cues that differ are compared once, when they are put away.
        if (isShared(track.items, original->items) && track == *original)
            return m_states.current.tracks[i];
    }
    auto frozen = std::make_shared<FrozenTrack>();
    frozen->rest = SessionTracks::withoutCues(track);
    frozen->items = freeze(track.items, before, original);
    if (track.previousItems)
        frozen->previousItems = freeze(*track.previousItems, before, original);
    return frozen;
}

/// Shares with the same list of the current state wherever it hangs there, else with the track's own cues.
EditHistory::Cues EditHistory::freeze(const QList<Subtitle> &cues, const FrozenTrack *before,
                                      const SubtitleTrack *original) const
{
    for (size_t i = 0; i < m_states.current.tracks.size(); ++i) {
        const SubtitleTrack &track = m_current.tracks->at(qsizetype(i));
        if (isShared(cues, track.items))
            return m_states.current.tracks[i]->items;
        if (track.previousItems && isShared(cues, *track.previousItems))
            return m_states.current.tracks[i]->previousItems;
    }
    return before ? FrozenCues::freeze(cues, original->items, *before->items)
                  : FrozenCues::freeze(cues, {}, FrozenCues());
}

LintoraSession EditHistory::thaw(const FrozenSession &session) const
{
    LintoraSession state = session.rest;
    QList<SubtitleTrack> tracks;
    for (const auto &frozen : session.tracks) {
        SubtitleTrack track = frozen->rest;
        track.items = thaw(frozen->items);
        if (frozen->previousItems)
            track.previousItems = thaw(frozen->previousItems);
        tracks += track;
    }
    state.tracks = tracks;
    return SessionTracks::activated(std::move(state));
}

QList<Subtitle> EditHistory::thaw(const Cues &cues) const
{
    for (size_t i = 0; i < m_states.current.tracks.size(); ++i) {
        if (m_states.current.tracks[i]->items == cues)
            return m_current.tracks->at(qsizetype(i)).items;
        if (cues && m_states.current.tracks[i]->previousItems == cues)
            return *m_current.tracks->at(qsizetype(i)).previousItems;
    }
    return cues->thaw();
}
