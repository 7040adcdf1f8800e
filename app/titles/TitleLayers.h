#pragma once

#include "app/titles/TitlePicture.h"

#include <QPainterPath>

#include <vector>

class QFont;

/// The parts of a title that lie over each other: shadow, stroke, glyphs.
namespace TitleLayers {

/// The outlines of one line of text, its origin at (0, 0), to be filled by the winding rule. Signs that a font has only
/// as coloured bitmaps have none.
QPainterPath outline(const QString &line, const QFont &font);

/// The same outline in pieces that lie side by side, mostly a glyph each. A rasteriser's work grows faster than the
/// size of a path: in pieces a line of text is drawn in a seventh of the time.
std::vector<QPainterPath> pieces(const QPainterPath &outline);

/// Draws `glyphs`, pieces that stand where `layout` says, over what `canvas` holds.
void draw(QImage &canvas, const std::vector<QPainterPath> &glyphs, const TitlePicture::Layout &layout,
          const Options &options);

} // namespace TitleLayers
