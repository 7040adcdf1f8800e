#pragma once

#include "app/model/CueProposal.h"
#include "store/LintoraSession.h"

/// What would become of a session if another one took its place, cue by cue.
struct SessionDifference
{
    struct Track
    {
        QString label;
        QList<CueProposal::Row> rows = {}; ///< In the order of time; `cue` counts in the list that has the cue.

        friend bool operator==(const Track &, const Track &) = default;
    };

    qsizetype added = 0;   ///< Cues that would come.
    qsizetype removed = 0; ///< Cues that would go.
    qsizetype changed = 0; ///< Cues that would have another text or other times.
    QList<Track> tracks;   ///< Those in which something differs.

    bool isNone() const { return tracks.isEmpty(); }

    /// `now` and `then` are in the order of SessionTracks. Tracks are compared by their id, then by their label, and an
    /// only track with an only one. `check` is called every few milliseconds.
    static SessionDifference between(const LintoraSession &now, const LintoraSession &then, const Check &check = {});

    friend bool operator==(const SessionDifference &, const SessionDifference &) = default;
};
