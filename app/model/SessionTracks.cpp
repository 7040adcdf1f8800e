#include "app/model/SessionTracks.h"

#include "core/CueEditing.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace SessionTracks {

namespace {

QUuid newID()
{
    return QUuid::createUuid();
}

void select(LintoraSession &session, const QUuid &id)
{
    session.selectedTrackID = id;
    session = activated(std::move(session));
}

} // namespace

LintoraSession normalized(LintoraSession session)
{
    session.schema = LintoraSession::currentSchema;
    if (!session.tracks)
        session.tracks.emplace();
    if (session.tracks->isEmpty()) {
        session.selectedTrackID.reset();
        session.splitOriginal.reset();
        if (session.items.isEmpty())
            return session;
        SubtitleTrack track = newTrack(session, session.items);
        track.previousItems = session.previousItems;
        track.cleaned = session.cleaned;
        session.tracks->append(track);
    }
    // Two tracks of one id, from a record that another hand has written, would be taken for each other.
    for (qsizetype i = 1; i < session.tracks->size(); ++i) {
        if (*indexOf(session, session.tracks->at(i).id) != i)
            (*session.tracks)[i].id = newID();
    }
    if (session.splitOriginal && (!indexOf(session, *session.splitOriginal) || session.tracks->size() == 1))
        session.splitOriginal.reset();
    if (!selectedIndex(session) || session.selectedTrackID == session.splitOriginal) {
        const auto shown = std::find_if(session.tracks->cbegin(), session.tracks->cend(),
                                        [&](const SubtitleTrack &each) { return each.id != session.splitOriginal; });
        session.selectedTrackID = shown == session.tracks->cend() ? session.tracks->first().id : shown->id;
    }
    return activated(std::move(session));
}

LintoraSession activated(LintoraSession session)
{
    const auto index = selectedIndex(session);
    if (!index)
        return session;
    const SubtitleTrack track = session.tracks->at(*index);
    session.items = track.items;
    session.options = track.options;
    session.look = track.look;
    session.removeFillers = track.removeFillers;
    session.removePunctuation = track.removePunctuation;
    session.previousItems = track.previousItems;
    session.cleaned = track.cleaned;
    return session;
}

LintoraSession committed(LintoraSession session)
{
    const auto index = selectedIndex(session);
    if (!index)
        return session;
    SubtitleTrack &track = (*session.tracks)[*index];
    track.items = session.items;
    track.options = session.options;
    track.look = session.look;
    track.removeFillers = session.removeFillers;
    track.removePunctuation = session.removePunctuation;
    track.previousItems = session.previousItems;
    track.cleaned = session.cleaned;
    return session;
}

LintoraSession selecting(LintoraSession session, const QUuid &id)
{
    if (isSelectable(session, id))
        select(session, id);
    return session;
}

bool isSelectable(const LintoraSession &session, const QUuid &id)
{
    return indexOf(session, id) && session.splitOriginal != id;
}

std::optional<qsizetype> selectedIndex(const LintoraSession &session)
{
    return session.selectedTrackID ? indexOf(session, *session.selectedTrackID) : std::nullopt;
}

std::optional<qsizetype> indexOf(const LintoraSession &session, const QUuid &id)
{
    if (!session.tracks)
        return std::nullopt;
    const auto found = std::find_if(session.tracks->cbegin(), session.tracks->cend(),
                                    [&](const SubtitleTrack &each) { return each.id == id; });
    return found == session.tracks->cend() ? std::nullopt : std::optional(found - session.tracks->cbegin());
}

std::optional<QUuid> changedTrack(const LintoraSession &before, const LintoraSession &after)
{
    std::optional<QUuid> changed;
    for (const SubtitleTrack &track : *after.tracks) {
        const auto index = indexOf(before, track.id);
        if (track.id == after.splitOriginal || (index && before.tracks->at(*index) == track))
            continue;
        if (track.id == after.selectedTrackID)
            return std::nullopt;
        if (!changed)
            changed = track.id;
    }
    return changed;
}

std::optional<qsizetype> changedCue(const LintoraSession &before, const LintoraSession &after)
{
    const auto selected = selectedIndex(after);
    const auto former = selected ? indexOf(before, after.tracks->at(*selected).id) : std::nullopt;
    if (!former)
        return std::nullopt;
    const QList<Subtitle> &now = after.tracks->at(*selected).items;
    const QList<Subtitle> &then = before.tracks->at(*former).items;
    const auto place = std::ranges::mismatch(now, then).in1 - now.begin();
    if (now.isEmpty() || (place == now.size() && now.size() == then.size()))
        return std::nullopt;
    return std::min(place, now.size() - 1);
}

// Clearing a shared list would give it as much room of its own as it had.

LintoraSession withoutCues(LintoraSession session)
{
    session.items = {};
    session.previousItems.reset();
    session.tracks.reset();
    return session;
}

SubtitleTrack withoutCues(SubtitleTrack track)
{
    track.items = {};
    track.previousItems.reset();
    return track;
}

SubtitleTrack newTrack(const LintoraSession &session, const QList<Subtitle> &cues)
{
    return {.id = newID(),
            .label = label(cues),
            .items = cues,
            .options = session.options,
            .removeFillers = session.removeFillers,
            .removePunctuation = session.removePunctuation,
            .look = session.look};
}

QString label(const QList<Subtitle> &cues)
{
    constexpr qsizetype sample = 500; // the language shows early
    std::array<int, 3> count{};
    for (const Subtitle &cue : cues.first(std::min(sample, cues.size())))
        ++count[size_t(LanguageSeparation::classify(cue.text))];
    using LanguageSeparation::Group;
    for (const Group group : {Group::chinese, Group::english}) {
        if (count[size_t(group)] * 2 > std::min(sample, cues.size()))
            return LanguageSeparation::label(group);
    }
    return u"字幕"_s;
}

LintoraSession importing(LintoraSession session, const QList<Subtitle> &cues, const QString &source)
{
    return importing(std::move(session), {{.label = label(cues), .items = cues}}, source);
}

LintoraSession importing(LintoraSession session, const QList<SubtitleTrack> &tracks, const QString &source)
{
    QList<SubtitleTrack> imported;
    for (const SubtitleTrack &track : tracks) {
        imported += newTrack(session, track.items);
        imported.last().label = track.label;
        imported.last().origins = track.origins;
    }
    session.source = source;
    session.splitOriginal.reset();
    session.tracks = imported;
    select(session, imported.first().id);
    return session;
}

LintoraSession adding(LintoraSession session, const QList<Subtitle> &cues, const QString &source, const QString &label)
{
    if (!session.tracks || session.tracks->isEmpty())
        return importing(std::move(session), cues, source);
    SubtitleTrack track = newTrack(session, cues);
    if (!label.isEmpty())
        track.label = label;
    const QString name = track.label;
    const auto isTaken = [&](const SubtitleTrack &each) { return each.label == track.label; };
    for (int number = 2; std::ranges::any_of(*session.tracks, isTaken); ++number)
        track.label = u"%1 %2"_s.arg(name).arg(number);
    session.tracks->append(track);
    select(session, track.id);
    return session;
}

LintoraSession separated(LintoraSession session, const QList<LanguageSeparation::GroupedCues> &groups)
{
    const qsizetype index = *selectedIndex(session);
    QList<SubtitleTrack> &tracks = *session.tracks;
    QList<SubtitleTrack> languages;
    for (const LanguageSeparation::GroupedCues &group : groups) {
        SubtitleTrack track = newTrack(session, group.items);
        track.label = LanguageSeparation::label(group.group);
        languages += track;
    }
    qsizetype place = index;
    if (session.splitOriginal) {
        // What a first separation kept holds this track's text too.
        tracks.removeAt(index);
    } else {
        tracks[index].label = u"原稿"_s;
        session.splitOriginal = tracks[index].id;
        ++place;
    }
    for (const SubtitleTrack &language : std::as_const(languages))
        tracks.insert(place++, language);
    select(session, languages.first().id);
    return session;
}

LintoraSession restored(LintoraSession session)
{
    const SubtitleTrack original = session.tracks->at(*indexOf(session, *session.splitOriginal));
    session.tracks = QList<SubtitleTrack>{original};
    session.splitOriginal.reset();
    select(session, original.id);
    return session;
}

LintoraSession movingCues(LintoraSession session, const QList<qsizetype> &indices, const QUuid &to)
{
    const qsizetype source = *selectedIndex(session);
    QList<SubtitleTrack> &tracks = *session.tracks;
    QList<Subtitle> &target = tracks[*indexOf(session, to)].items;
    QSet<qint64> taken;
    for (const Subtitle &cue : std::as_const(target))
        taken += cue.id;
    qint64 next = CueEditing::nextID(target);
    for (const qsizetype index : indices) {
        Subtitle cue = tracks.at(source).items.at(index);
        next = std::max(next, taken.contains(cue.id) ? next : cue.id + 1);
        if (taken.contains(cue.id))
            cue.id = next++;
        taken += cue.id;
        target.insert(CueEditing::positionFor(target, cue.start), cue);
    }
    tracks[source].items = CueEditing::removing(tracks.at(source).items, indices);
    if (tracks[source].items.isEmpty()) {
        tracks.removeAt(source);
        session.selectedTrackID = to;
    }
    return activated(std::move(session));
}

} // namespace SessionTracks
