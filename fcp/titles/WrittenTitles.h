#pragma once

#include "core/Check.h"
#include "fcp/titles/TitleTrack.h"
#include "fcp/xml/XmlDocument.h"

/// Proof-reading of a finished document.
namespace WrittenTitles {

/// Reads the titles of a project that bear the `marks` of a document's tracks, and holds them against `tracks`: each
/// must stand with its whole text on the frames nearest to its times. Where a title stands is reckoned from its clip in
/// the document, as Final Cut Pro does.
/// `projectName` chooses one of several projects. Calls `check` every few milliseconds.
/// @throws ConversionError about the first cue of a track, in the order of time, that stands otherwise or not at all.
/// @throws PlatformError when the document is no XML.
void verify(QByteArrayView document, const std::vector<XmlDocument::Wanted> &marks,
            const std::vector<TitleTrack> &tracks, const QString &projectName = {}, const Check &check = {});

/// The same for a clip, whose titles hang in the document's one media resource.
void verifyClip(QByteArrayView document, const std::vector<XmlDocument::Wanted> &marks,
                const std::vector<TitleTrack> &tracks, const Check &check = {});

} // namespace WrittenTitles
