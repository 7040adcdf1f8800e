#pragma once

#include "app/model/FrozenCues.h"
#include "store/LintoraSession.h"

#include <optional>
#include <vector>

/// What makes one session out of another, written down: only what differs.
///
/// Both are in the order of SessionTracks. Lists of cues are said as another list of the session before with pieces of
/// it exchanged, so that a changed cue takes its own room, however many cues there are, and a list that only moved to
/// another place takes none.
///
/// ```
///   {"rest": SESSION,                     without tracks and cues; left out when unchanged
///    "tracks": [{"from": 0,               the track of the session before; left out for a new one
///                "items": CUES,           left out when unchanged, like the rest
///                "noPreviousItems": true, there were some, and are none any more
///                "previousItems": CUES,
///                "rest": TRACK}]}         without cues
///
///   CUES = {"edits": [{"at": 3, "cut": 1, "put": [CUE]}],   places in `of`, ascending; left out when there are none
///           "of": 0}                      twice the place of the track whose items these were, and one more for its
///                                         previousItems; -1 is an empty list
/// ```
namespace SessionChange {

/// Writes what makes `after` out of `before`.
void write(JsonWriter &json, const LintoraSession &before, const LintoraSession &after);

/// What became of a list of cues.
struct Cues
{
    qint64 of = -1;
    std::vector<CueEdit> edits;
};

struct Track
{
    std::optional<qint64> from;
    std::optional<Cues> items;
    bool hasNoPreviousItems = false;
    std::optional<Cues> previousItems;
    std::optional<SubtitleTrack> rest;
};

/// What is written of a change; whether the session before has what it names is for who makes it.
struct Change
{
    std::optional<LintoraSession> rest;
    std::optional<std::vector<Track>> tracks;
};

/// @throws PlatformError naming the key path of what is missing or of another type.
Change read(JsonReader &json);

} // namespace SessionChange
