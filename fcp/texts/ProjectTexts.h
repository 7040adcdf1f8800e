#pragma once

#include "core/Subtitle.h"
#include "fcp/texts/TextOrigin.h"
#include "fcp/texts/TextWalk.h"
#include "fcp/xml/XmlDocument.h"

#include <QStringList>

#include <vector>

/// The titles and captions that stand in a project, as cues.
namespace ProjectTexts {

/// What gave no cue.
struct Skipped
{
    QString name;   ///< Of the title, as it stands; its text where it has none.
    QString reason; ///< For the user.

    friend bool operator==(const Skipped &, const Skipped &) = default;
};

/// The texts of one role on one lane.
struct Track
{
    QString label;         ///< For people, different from those of the other tracks.
    QString role;          ///< As it stands; empty for titles that state none.
    qint64 lane = 0;       ///< 0 for the primary storyline.
    bool captions = false; ///< Native captions rather than titles.
    QList<Subtitle> items; ///< By start, numbered from 1. Times are what is seen, on the nearest frames.
    std::optional<Rational> frameDuration = {}; ///< Seconds, of the timeline; absent when it does not tell.
    std::vector<TextWalk::Found> places;        ///< Where each item stands.
    QList<Skipped> skipped;                     ///< In document order.
};

/// A document of which only what `read` asks for is kept, in a fraction of the time. For reading its texts, and nothing
/// else.
/// @throws ConversionError "不支持含外部实体的 XML。"; PlatformError when it is no XML
XmlDocument document(QByteArrayView bytes, const Check &check = {});

/// All tracks, in the order in which the document first mentions them. Titles without any text are in none.
/// `project` may be null for a document that holds clips instead: one, or several that say where they lie. The places
/// refer to `document`. Calls `check` every few milliseconds.
/// @throws ConversionError when the document is none of Final Cut Pro, holds nothing, or more than can be walked.
std::vector<Track> read(const XmlDocument &document, const xmlNode *project, const Check &check = {});

/// Where the cues of each of `tracks` came from, for whoever puts their texts back later. `document` is the one that
/// they were read from, whole.
std::vector<QList<TextOrigin>> origins(const XmlDocument &document, const std::vector<Track> &tracks,
                                       const Check &check = {});

/// The tracks' labels, for a choice.
QStringList labels(const std::vector<Track> &tracks);

} // namespace ProjectTexts
