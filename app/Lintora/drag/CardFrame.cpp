#include "app/Lintora/drag/CardFrame.h"

#include <QPainter>

namespace CardFrame {

namespace {

QColor blend(const QColor &from, const QColor &to, float share)
{
    const float rest = 1 - share;
    return QColor::fromRgbF(from.redF() * rest + to.redF() * share, from.greenF() * rest + to.greenF() * share,
                            from.blueF() * rest + to.blueF() * share);
}

QPen pen(const QPalette &palette, Edge edge, State state)
{
    if (state.focused)
        return {palette.color(QPalette::Highlight), 2};
    const QColor quiet = blend(palette.color(QPalette::Base), palette.color(QPalette::Text), 0.45F);
    QPen pen(state.highlighted ? palette.color(QPalette::Highlight) : quiet, 1);
    if (edge == Edge::dashed && !state.highlighted)
        pen.setDashPattern({4, 3});
    return pen;
}

} // namespace

void paint(QPainter &painter, const QRectF &bounds, const QPalette &palette, Edge edge, State state)
{
    const QPen line = pen(palette, edge, state);
    const qreal inset = line.widthF() / 2; // the line lies within the bounds
    const QColor ground = palette.color(QPalette::Base);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(line);
    painter.setBrush(state.highlighted ? blend(ground, palette.color(QPalette::Highlight), 0.12F) : ground);
    painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), radius, radius);
}

QColor secondaryText(const QPalette &palette)
{
    return blend(palette.color(QPalette::Base), palette.color(QPalette::Text), 0.62F);
}

} // namespace CardFrame
