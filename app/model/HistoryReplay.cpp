#include "app/model/HistoryReplay.h"

#include "app/model/SessionTracks.h"
#include "core/PlatformError.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<const FrozenCues> frozenAlone(const QList<Subtitle> &cues)
{
    return FrozenCues::freeze(cues, {}, FrozenCues());
}

void require(bool isThere)
{
    if (!isThere)
        throw PlatformError(u"历史记录无效。"_s);
}

} // namespace

HistoryReplay::HistoryReplay(const LintoraSession &first)
{
    m_states.current.rest = SessionTracks::withoutCues(first);
    for (const SubtitleTrack &track : *first.tracks) {
        m_states.current.tracks.push_back(std::make_shared<const FrozenTrack>(
            FrozenTrack{.rest = SessionTracks::withoutCues(track),
                        .items = frozenAlone(track.items),
                        .previousItems = track.previousItems ? frozenAlone(*track.previousItems) : nullptr}));
    }
}

void HistoryReplay::record(const SessionChange::Change &change, const QString &title)
{
    FrozenSession state = changed(change);
    state.title = title;
    m_states.past.push_back(std::exchange(m_states.current, std::move(state)));
    m_states.future.clear();
}

void HistoryReplay::amend(const SessionChange::Change &change, const QString &title)
{
    FrozenSession state = changed(change);
    state.title = title.isEmpty() ? m_states.current.title : title;
    m_states.current = std::move(state);
}

void HistoryReplay::insertBefore(const SessionChange::Change &change, const QString &title)
{
    FrozenSession state = changed(change);
    (m_states.past.empty() ? m_states.current : state).title = title;
    m_states.past.push_back(std::move(state));
}

void HistoryReplay::undo()
{
    require(!m_states.past.empty());
    m_states.future.push_back(std::exchange(m_states.current, std::move(m_states.past.back())));
    m_states.past.pop_back();
}

void HistoryReplay::redo()
{
    require(!m_states.future.empty());
    m_states.past.push_back(std::exchange(m_states.current, std::move(m_states.future.back())));
    m_states.future.pop_back();
}

LintoraSession HistoryReplay::current() const
{
    return EditHistory(FrozenHistory{.past = {}, .current = m_states.current, .future = {}}).current();
}

FrozenSession HistoryReplay::changed(const SessionChange::Change &change) const
{
    FrozenSession state{.rest = change.rest.value_or(m_states.current.rest), .title = {}, .tracks = {}};
    if (change.tracks) {
        for (const SessionChange::Track &track : *change.tracks)
            state.tracks.push_back(changed(track));
    } else {
        state.tracks = m_states.current.tracks;
    }
    // What a session says of its selected track follows that one.
    QList<SubtitleTrack> tracks;
    for (const auto &track : state.tracks)
        tracks += track->rest;
    state.rest.tracks = tracks;
    state.rest = SessionTracks::withoutCues(SessionTracks::activated(std::move(state.rest)));
    return state;
}

std::shared_ptr<const FrozenTrack> HistoryReplay::changed(const SessionChange::Track &track) const
{
    const std::vector<std::shared_ptr<const FrozenTrack>> &tracks = m_states.current.tracks;
    require(!track.from || (*track.from >= 0 && *track.from < qint64(tracks.size())));
    auto former = track.from ? tracks[size_t(*track.from)] : nullptr;
    if (former && !track.items && !track.previousItems && !track.hasNoPreviousItems && !track.rest)
        return former;
    FrozenTrack result = former ? *former : FrozenTrack{.rest = {}, .items = frozenAlone({}), .previousItems = {}};
    if (track.rest)
        result.rest = SessionTracks::withoutCues(*track.rest);
    if (track.items)
        result.items = changed(*track.items);
    if (track.previousItems)
        result.previousItems = changed(*track.previousItems);
    else if (track.hasNoPreviousItems)
        result.previousItems.reset();
    return std::make_shared<const FrozenTrack>(std::move(result));
}

std::shared_ptr<const FrozenCues> HistoryReplay::changed(const SessionChange::Cues &cues) const
{
    std::shared_ptr<const FrozenCues> list = find(cues.of);
    require(list != nullptr);
    qsizetype done = 0;
    for (const CueEdit &edit : cues.edits) {
        require(edit.at >= done && edit.at <= list->count() && edit.cut >= 0 && edit.cut <= list->count() - edit.at);
        done = edit.at + edit.cut;
    }
    return cues.edits.empty() ? list : list->edited(cues.edits);
}

/// Null when there is none of that number.
std::shared_ptr<const FrozenCues> HistoryReplay::find(qint64 list) const
{
    const std::vector<std::shared_ptr<const FrozenTrack>> &tracks = m_states.current.tracks;
    if (list == -1)
        return frozenAlone({});
    if (list < 0 || list / 2 >= qint64(tracks.size()))
        return nullptr;
    const FrozenTrack &track = *tracks[size_t(list / 2)];
    return list % 2 == 0 ? track.items : track.previousItems;
}
