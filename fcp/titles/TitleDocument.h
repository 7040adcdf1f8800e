#pragma once

#include "fcp/titles/TitlePattern.h"
#include "fcp/titles/TitleTrack.h"
#include "fcp/xml/XmlDocument.h"

#include <optional>
#include <vector>

class Utf8Writer;

/// A title as it hangs on a clip.
struct ConnectedTitle
{
    QStringView text;   ///< Trimmed; a view into the document's cues.
    size_t layer;       ///< Which of the document's layers it belongs to.
    qint64 offsetFrame; ///< In the clip's own time.
    qint64 frames;      ///< Length.
    qint64 styleNumber; ///< The first text style's id is "substyle" and this; those of further ones count on.
};

/// The titles that one clip carries: the run [first, end) of the document's titles.
struct TitleRun
{
    xmlNode *clip;
    const xmlNode *before; ///< The child in front of which they stand; null for the end.
    size_t first;
    size_t end;
};

/// A complete FCPXML document: a small tree, and titles that are written into it on the way out.
///
/// The tree never holds the titles, which are ninety-nine hundredths of the document; that makes writing ten times as
/// fast and keeps memory at the size of the cues.
class TitleDocument
{
public:
    /// By which Final Cut Pro knows the effect of the titles, its Basic Title.
    static constexpr QByteArrayView basicTitle =
        ".../Titles.localized/Bumper:Opener.localized/Basic Title.localized/Basic Title.moti";

    /// One track of titles.
    struct Layer
    {
        TitleTrack track; ///< Its cues keep alive what the titles' texts look into. Checked.
        QList<QByteArray>
            effectIDs; ///< Of its effects in the tree's resources, the titles' own first; none for captions.
        quint64 lane;  ///< Of all its titles.
    };

    struct Content
    {
        XmlDocument tree; ///< All but the titles.
        std::vector<Layer> layers;
        std::optional<int> indentation; ///< Blanks before a title; absent when nothing may stand between titles.
        std::vector<ConnectedTitle> titles;
        std::vector<TitleRun> runs; ///< In any order, a clip once.
    };

    explicit TitleDocument(Content content);

    /// How the titles of each track are found in the document, in the order of the tracks.
    std::vector<XmlDocument::Wanted> marks() const;

    /// Writes the document as UTF-8, the same bytes every time, and calls out.finish().
    void write(Utf8Writer &out) const;

    /// The whole document in memory.
    QByteArray toUtf8() const;

private:
    Content m_content;
};
