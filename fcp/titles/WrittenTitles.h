#pragma once

#include "core/Check.h"
#include "core/Subtitle.h"
#include "fcp/Options.h"

/// Proof-reading of a finished document.
namespace WrittenTitles {

/// Reads the titles of a project that refer to the effect `effectID`, and holds them against `cues`: each must stand
/// with its whole text on the frames nearest to its times. Where a title stands is reckoned from its clip in the
/// document, as Final Cut Pro does.
/// @throws ConversionError about the first cue, in the order of time, that stands otherwise or not at all.
/// `projectName` chooses one of several projects. Calls `check` every few milliseconds.
/// @throws PlatformError when the document is no XML.
void verify(QByteArrayView document, const QByteArray &effectID, const QList<Subtitle> &cues, const Options &options,
            const QString &projectName = {}, const Check &check = {});

/// The same for a clip, whose titles hang in the document's one media resource.
void verifyClip(QByteArrayView document, const QByteArray &effectID, const QList<Subtitle> &cues,
                const Options &options, const Check &check = {});

} // namespace WrittenTitles
