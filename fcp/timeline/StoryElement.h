#pragma once

#include "fcp/Rational.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <libxml/tree.h>

#include <optional>
#include <vector>

class MediaResources;

/// One element of a timeline as far as its sound is concerned, read once: compound clips show the same element many
/// times.
///
/// ```
///   parent's time   |----------|-- offset .. offset + duration --|
///   own time                   |-- start ... start + duration ---|
/// ```
struct StoryElement
{
    enum class Kind
    {
        reference, ///< Sounds by the resource to which it refers: "asset-clip", "ref-clip", "audio".
        container, ///< Sounds by what it contains: "clip", "sync-clip".
        picture,   ///< Makes no sound: "video", "title", "gap" and the like, and a multicam clip of which only the
                   ///< picture is used.
        storyline, ///< A "spine".
        audition,  ///< A choice, of which the first child is the one in use.
    };

    enum class OwnSound
    {
        asStated,
        off, ///< As if only the picture was used.
    };

    const xmlNode *element = nullptr;
    Kind kind = Kind::picture;
    bool enabled = true;         ///< Of a disabled element only the times below are read.
    bool isConnected = false;    ///< Stands on a lane of its own instead of being content of its parent.
    bool muted = false;          ///< Its own sound is switched off.
    bool retimed = false;        ///< Has a speed change.
    bool hasEffects = false;     ///< Has an enabled audio filter.
    bool storylineMuted = false; ///< In a "sync-clip", the sound of its content is switched off ...
    bool connectedMuted = false; ///< ... or that of what is connected to its content.

    std::optional<Rational> offset = {};        ///< Seconds of the parent's time.
    Rational start = {};                        ///< Seconds of its own time.
    std::optional<Rational> duration = {};      ///< Seconds of the timeline on which it lies.
    std::optional<Rational> soundStart = {};    ///< Own time; absent when the sound begins with the picture.
    std::optional<Rational> soundDuration = {}; ///< Own time; absent when the sound lasts as long as the picture.
    std::optional<Rational> contentStart = {};  ///< "tcStart": where its time begins.
    std::optional<Rational> sourceRate = {};    ///< As ConformRate::sourceRate.
    std::optional<Rational> frameDuration = {}; ///< Seconds, of its own format; absent when that does not tell.

    QSet<QByteArray> roles = {};             ///< Of its own sound, with subroles; empty when it does not tell.
    QSet<QByteArray> contentRolesOff = {};   ///< Roles that are switched off in what it contains ...
    QSet<QByteArray> connectedRolesOff = {}; ///< ... and in what is connected to that.

    double volume = 1;                           ///< Linear factor.
    double storylineVolume = 1;                  ///< In a "sync-clip", of the sound of its content ...
    double connectedVolume = 1;                  ///< ... and of what is connected to its content. Linear factors.
    const xmlNode *resource = nullptr;           ///< What its "ref" names; null when there is no such thing.
    std::vector<const xmlNode *> content = {};   ///< What in it can carry sound: its own, a part of it ...
    std::vector<const xmlNode *> connected = {}; ///< ... and what hangs on it.

    /// @throws ConversionError when a time cannot be read, when it is a multicam clip, or when something stands in it
    /// that cannot be placed.
    static StoryElement read(const xmlNode *element, const MediaResources &resources,
                             OwnSound sound = OwnSound::asStated);

    /// What a disabled element tells: no more than where its neighbours in a storyline lie. Times that cannot be read
    /// are absent.
    static StoryElement readPlace(const xmlNode *element, const MediaResources &resources);

    /// Whether the element is one of the kinds above.
    static bool isStory(const xmlNode *element);

    QString name() const; ///< Empty when it has none.
};
