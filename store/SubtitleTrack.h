#pragma once

#include "core/Subtitle.h"
#include "fcp/Options.h"
#include "fcp/texts/TextOrigin.h"
#include "fcp/titles/TitleTemplate.h"

#include <QUuid>

#include <optional>

/// One language track, for example the Chinese half of a bilingual file. It carries its own options, so that two tracks
/// can be styled and exported differently.
struct SubtitleTrack
{
    QUuid id = {};      ///< What the selection remembers a track by. A new track takes a fresh random one.
    QString label = {}; ///< Shown on the track's tab.
    QList<Subtitle> items = {};
    Options options = {};
    bool removeFillers = false;                        ///< Cleanup setting: remove filler words.
    bool removePunctuation = false;                    ///< Cleanup setting: remove punctuation and split sentences.
    std::optional<QList<Subtitle>> previousItems = {}; ///< The cues before the last cleanup, to go back to.
    bool cleaned = false;                              ///< Whether the cleanup has been applied to `items`.
    QList<TextOrigin> origins = {}; ///< Where cues came from, if from a project. Other readers pass it over.
    std::optional<TitleTemplate> look =
        {}; ///< A title of the user's own in the place of the options' style. Other readers pass it over.

    friend bool operator==(const SubtitleTrack &, const SubtitleTrack &) = default;
};

/// Reads an object whose keys are the field names. All are required but "previousItems", which may be null, "origins"
/// and "look".
/// @throws PlatformError naming the key path that is missing or of another type.
SubtitleTrack readSubtitleTrack(JsonReader &json);

/// Writes the object that readSubtitleTrack reads, keys sorted, "previousItems", "origins" and "look" left out when
/// there are none.
void writeSubtitleTrack(JsonWriter &json, const SubtitleTrack &track);
