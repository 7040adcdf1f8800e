#pragma once

#include "core/Check.h"
#include "fcp/titles/Identifiers.h"
#include "fcp/titles/PlacedTracks.h"
#include "fcp/titles/TitleDocument.h"

/// Hangs titles on the clips of a primary storyline.
namespace TitleConnection {

/// A document that is complete but for its titles.
struct Target
{
    XmlDocument tree;
    const xmlNode *spine;                     ///< The primary storyline, inside `tree`.
    Rational projectStart;                    ///< Seconds; the timeline time of frame 0.
    Identifiers::Counter styles;              ///< Numbers of the titles' text styles.
    std::vector<QList<QByteArray>> effectIDs; ///< Of each track, as in TitleDocument.
    std::optional<int> indentation;           ///< As in TitleDocument.
};

/// Every title goes to the clip in which it starts. The titles of each track are on a lane of their own, above all
/// lanes of the document; captions are on the first one unless some of their role stand in the document already.
/// @throws ConversionError when there is no clip, or naming the first cue that finds none, or
/// "字幕连接位置位于变速主片段。请先将项目制作为复合片段，再导出 XML。"
TitleDocument connect(Target target, std::vector<PlacedTrack> tracks, const Check &check = {});

} // namespace TitleConnection
