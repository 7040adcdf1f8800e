#pragma once

#include <QPalette>
#include <QRectF>

class QPainter;

/// How the areas for dropping and the cards for dragging are drawn, in the colours of a palette.
namespace CardFrame {

constexpr qreal radius = 10; ///< Of the corners, in points.

enum class Edge
{
    dashed, ///< Takes something in.
    solid   ///< Can be taken away.
};

struct State
{
    bool highlighted = false; ///< Something is held over it, or the pointer is.
    bool focused = false;
};

void paint(QPainter &painter, const QRectF &bounds, const QPalette &palette, Edge edge, State state);

/// The text colour for what matters less. Its contrast to the frame's ground is still enough to be read with ease.
QColor secondaryText(const QPalette &palette);

} // namespace CardFrame
