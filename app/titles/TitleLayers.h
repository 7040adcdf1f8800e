#pragma once

#include "app/titles/TitlePicture.h"

#include <QGlyphRun>
#include <QPainterPath>
#include <QTransform>

#include <vector>

class QFont;

/// The parts of a title that lie over each other: shadow, stroke, glyphs.
namespace TitleLayers {

/// One line of text, its origin at (0, 0).
struct Shapes
{
    QPainterPath outline;      ///< To be filled by the winding rule.
    QList<QGlyphRun> pictures; ///< Signs that their font has as coloured pictures, which have no outline.
};
Shapes shapes(const QString &line, const QFont &font);

/// What of a title is drawn where.
struct Glyphs
{
    struct Pictures
    {
        QGlyphRun run;
        QTransform place;
    };
    std::vector<QPainterPath> pieces;
    std::vector<Pictures> pictures;
};

/// The same outline in pieces that lie side by side, mostly a glyph each. A rasteriser's work grows faster than the
/// size of a path: in pieces a line of text is drawn in a seventh of the time.
std::vector<QPainterPath> pieces(const QPainterPath &outline);

/// Draws `glyphs`, which stand where `layout` says, over what `canvas` holds.
void draw(QImage &canvas, const Glyphs &glyphs, const TitlePicture::Layout &layout, const Options &options);

} // namespace TitleLayers
