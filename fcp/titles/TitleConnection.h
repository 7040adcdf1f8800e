#pragma once

#include "core/Check.h"
#include "fcp/titles/Identifiers.h"
#include "fcp/titles/TitleDocument.h"
#include "fcp/titles/TitleGrid.h"

/// Hangs titles on the clips of a primary storyline.
namespace TitleConnection {

/// A document that is complete but for its titles.
struct Target
{
    XmlDocument tree;
    const xmlNode *spine;        ///< The primary storyline, inside `tree`.
    Rational projectStart;       ///< Seconds; the timeline time of frame 0.
    Identifiers::Counter styles; ///< Numbers of the titles' text styles.
    QByteArray effectID;
    std::optional<int> indentation; ///< As in TitleDocument.
};

/// Every title goes to the clip in which it starts, on a lane above all lanes of the document. `titles` look into
/// `cues`.
/// @throws ConversionError when there is no clip, or naming the first cue that finds none, or
/// "字幕连接位置位于变速主片段。请先将项目制作为复合片段，再导出 XML。"
TitleDocument connect(Target target, const std::vector<TitleGrid::Title> &titles, const QList<Subtitle> &cues,
                      const Options &options, const Check &check = {});

} // namespace TitleConnection
