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

void select(LintoraSession &job, const QUuid &id)
{
    job.selectedTrackID = id;
    job = activated(std::move(job));
}

} // namespace

LintoraSession normalized(LintoraSession job)
{
    job.schema = LintoraSession::currentSchema;
    if (!job.tracks)
        job.tracks.emplace();
    if (job.tracks->isEmpty()) {
        job.selectedTrackID.reset();
        job.splitOriginal.reset();
        if (job.items.isEmpty())
            return job;
        SubtitleTrack track = newTrack(job, job.items);
        track.previousItems = job.previousItems;
        track.cleaned = job.cleaned;
        job.tracks->append(track);
    }
    // Two tracks of one id, from a record that another hand has written, would be taken for each other.
    for (qsizetype i = 1; i < job.tracks->size(); ++i) {
        if (*indexOf(job, job.tracks->at(i).id) != i)
            (*job.tracks)[i].id = newID();
    }
    if (job.splitOriginal && (!indexOf(job, *job.splitOriginal) || job.tracks->size() == 1))
        job.splitOriginal.reset();
    if (!selectedIndex(job) || job.selectedTrackID == job.splitOriginal) {
        const auto shown = std::find_if(job.tracks->cbegin(), job.tracks->cend(),
                                        [&](const SubtitleTrack &each) { return each.id != job.splitOriginal; });
        job.selectedTrackID = shown == job.tracks->cend() ? job.tracks->first().id : shown->id;
    }
    return activated(std::move(job));
}

LintoraSession activated(LintoraSession job)
{
    const auto index = selectedIndex(job);
    if (!index)
        return job;
    const SubtitleTrack track = job.tracks->at(*index);
    job.items = track.items;
    job.options = track.options;
    job.removeFillers = track.removeFillers;
    job.removePunctuation = track.removePunctuation;
    job.previousItems = track.previousItems;
    job.cleaned = track.cleaned;
    return job;
}

LintoraSession committed(LintoraSession job)
{
    const auto index = selectedIndex(job);
    if (!index)
        return job;
    SubtitleTrack &track = (*job.tracks)[*index];
    track.items = job.items;
    track.options = job.options;
    track.removeFillers = job.removeFillers;
    track.removePunctuation = job.removePunctuation;
    track.previousItems = job.previousItems;
    track.cleaned = job.cleaned;
    return job;
}

LintoraSession selecting(LintoraSession job, const QUuid &id)
{
    if (indexOf(job, id) && job.splitOriginal != id)
        select(job, id);
    return job;
}

std::optional<qsizetype> selectedIndex(const LintoraSession &job)
{
    return job.selectedTrackID ? indexOf(job, *job.selectedTrackID) : std::nullopt;
}

std::optional<qsizetype> indexOf(const LintoraSession &job, const QUuid &id)
{
    if (!job.tracks)
        return std::nullopt;
    const auto found = std::find_if(job.tracks->cbegin(), job.tracks->cend(),
                                    [&](const SubtitleTrack &each) { return each.id == id; });
    return found == job.tracks->cend() ? std::nullopt : std::optional(found - job.tracks->cbegin());
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

SubtitleTrack newTrack(const LintoraSession &job, const QList<Subtitle> &cues)
{
    return {.id = newID(),
            .label = label(cues),
            .items = cues,
            .options = job.options,
            .removeFillers = job.removeFillers,
            .removePunctuation = job.removePunctuation};
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

LintoraSession importing(LintoraSession job, const QList<Subtitle> &cues, const QString &source)
{
    const SubtitleTrack track = newTrack(job, cues);
    job.source = source;
    job.splitOriginal.reset();
    job.tracks = QList<SubtitleTrack>{track};
    select(job, track.id);
    return job;
}

LintoraSession separated(LintoraSession job, const QList<LanguageSeparation::GroupedCues> &groups)
{
    const qsizetype index = *selectedIndex(job);
    QList<SubtitleTrack> &tracks = *job.tracks;
    QList<SubtitleTrack> languages;
    for (const LanguageSeparation::GroupedCues &group : groups) {
        SubtitleTrack track = newTrack(job, group.items);
        track.label = LanguageSeparation::label(group.group);
        languages += track;
    }
    qsizetype place = index;
    if (job.splitOriginal) {
        // What a first separation kept holds this track's text too.
        tracks.removeAt(index);
    } else {
        tracks[index].label = u"原稿"_s;
        job.splitOriginal = tracks[index].id;
        ++place;
    }
    for (const SubtitleTrack &language : std::as_const(languages))
        tracks.insert(place++, language);
    select(job, languages.first().id);
    return job;
}

LintoraSession restored(LintoraSession job)
{
    const SubtitleTrack original = job.tracks->at(*indexOf(job, *job.splitOriginal));
    job.tracks = QList<SubtitleTrack>{original};
    job.splitOriginal.reset();
    select(job, original.id);
    return job;
}

LintoraSession movingCues(LintoraSession job, const QList<qsizetype> &indices, const QUuid &to)
{
    const qsizetype source = *selectedIndex(job);
    QList<SubtitleTrack> &tracks = *job.tracks;
    QList<Subtitle> &target = tracks[*indexOf(job, to)].items;
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
        job.selectedTrackID = to;
    }
    return activated(std::move(job));
}

} // namespace SessionTracks
