#pragma once

#include <QByteArray>
#include <QList>

/// Small interchange documents for tests, written as they are read.
///
/// ```
/// tag("asset-clip ref=talk offset=5s duration=10s", {tag("adjust-volume amount=-6dB")})
/// ```
struct Tag
{
    QByteArray name;
    QByteArray attributes; ///< As they stand in XML, with a leading blank each.
    QList<Tag> children = {};
    QByteArray text = {}; ///< Before the children, as it stands in XML.

    QByteArray toXml() const;
};

/// `description` is a name and attributes, separated by single blanks. A value holds none.
Tag tag(QByteArrayView description, const QList<Tag> &children = {});

/// The same around text.
Tag textTag(QByteArrayView description, const QByteArray &text);

/// Documents around a few tags. All know these resources:
/// - formats "p24", "p25", "p2398", "p48" (of 48 frames a second) and "unrated", which does not tell its rate;
/// - assets "talk" (1000 s from time 0), "tape" (100 s from time 3600 s), "music" (sound only, 300 s), "mute" (hasAudio
/// 0),
///   "picture" (hasVideo alone), "lost" (no file) and "endless" (tells no duration), each of a file of its name,
///   "/m/talk.mov";
/// - effects "title" and "filter".
namespace StoryDocument {

/// A project in 25 frames of `duration`, whose storyline is `items`. `more` are further resources.
QByteArray project(const char *duration, const QList<Tag> &items, const QList<Tag> &more = {});

/// A project whose "sequence" has other attributes.
QByteArray sequence(QByteArrayView description, const QList<Tag> &items, const QList<Tag> &more = {});

/// What a drag of browser clips delivers: tags beside the resources.
QByteArray selection(const QList<Tag> &content, const QList<Tag> &more = {});

/// A "media" resource whose sequence, described by `description`, has the storyline `items`.
Tag compound(const char *id, QByteArrayView description, const QList<Tag> &items);

} // namespace StoryDocument
