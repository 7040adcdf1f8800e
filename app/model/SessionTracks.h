#pragma once

#include "core/text/LanguageSeparation.h"
#include "store/LintoraSession.h"

/// A session and its tracks.
///
/// A session in use keeps this order: there is a list of tracks; an empty one goes with no cues. One of them is
/// selected, never the original kept from before a separation while there is another; cues, options, look and switches
/// of the session are those of the selected track, and the track has them too.
namespace SessionTracks {

/// Any record put into that order. Where the session and its selected track differ, the track holds. A record without
/// tracks gets one of its own cues, if it has some.
LintoraSession normalized(LintoraSession session);

/// The session with the selected track's cues, options, look and switches.
LintoraSession activated(LintoraSession session);

/// The session with its cues, options, look and switches put back into the selected track.
LintoraSession committed(LintoraSession session);

/// The same session with another track selected; unchanged when there is none of that id, or it is the kept original.
LintoraSession selecting(LintoraSession session, const QUuid &id);

/// Whether that track is there, and is not the kept original, which nothing changes.
bool isSelectable(const LintoraSession &session, const QUuid &id);

/// Where the selected track stands; absent when there is none.
std::optional<qsizetype> selectedIndex(const LintoraSession &session);

/// Where that track stands; absent when there is none.
std::optional<qsizetype> indexOf(const LintoraSession &session, const QUuid &id);

/// The track whose cues differ between the two, if the selected one of `after` is not one that differs.
std::optional<QUuid> changedTrack(const LintoraSession &before, const LintoraSession &after);

/// The first cue of the selected track of `after` that is not as in `before`, or where cues have gone there. Absent
/// when they are the same, when none is left, and for a track that `before` has not.
std::optional<qsizetype> changedCue(const LintoraSession &before, const LintoraSession &after);

/// All of a session or a track but the cues: what is small, and compared or written on its own.
LintoraSession withoutCues(LintoraSession session);
SubtitleTrack withoutCues(SubtitleTrack track);

/// A track of `cues` with the session's options, look and switches, labelled by their language.
SubtitleTrack newTrack(const LintoraSession &session, const QList<Subtitle> &cues);

/// What a track of such cues is called: the language of most of its lines, 字幕 when none prevails.
QString label(const QList<Subtitle> &cues);

/// The session with `cues` as its only track, from `source`.
LintoraSession importing(LintoraSession session, const QList<Subtitle> &cues, const QString &source);

/// The session with `tracks`, at least one, as its only ones, from `source`. Of each the label, the cues and where they
/// came from are taken; all else is the session's.
LintoraSession importing(LintoraSession session, const QList<SubtitleTrack> &tracks, const QString &source);

/// The session with a track of `cues` behind the others, selected. It is called `label`, or by its language where that
/// is empty, with a number where another is called so. Where it is the first one, `source` is the session's.
LintoraSession adding(LintoraSession session, const QList<Subtitle> &cues, const QString &source,
                      const QString &label = {});

/// The session with the selected track kept as the original, and a track for each group in its place.
LintoraSession separated(LintoraSession session, const QList<LanguageSeparation::GroupedCues> &groups);

/// The session with the original as its only track. There must be one.
LintoraSession restored(LintoraSession session);

/// The session with the cues at `indices` of the selected track moved to another track, in that track's order by start;
/// one takes a new id where its own is taken. A track that is left empty is closed, and the other one selected.
LintoraSession movingCues(LintoraSession session, const QList<qsizetype> &indices, const QUuid &to);

} // namespace SessionTracks
