#pragma once

#include "app/style/TitlePicture.h"

#include <QPainterPath>

class QFont;

/// The parts of a title that lie over each other: shadow, stroke, glyphs.
namespace TitleLayers {

/// The outlines of one line of text, its origin at (0, 0), to be filled by the winding rule. Signs that a font has only
/// as coloured bitmaps have none.
QPainterPath outline(const QString &line, const QFont &font);

/// Draws `glyphs`, which stand where `layout` says, over what `canvas` holds.
void draw(QImage &canvas, const QPainterPath &glyphs, const TitlePicture::Layout &layout, const Options &options);

} // namespace TitleLayers
