// The signs on buttons, drawn so that they are sharp at any size and in any colour.

#include "app/Lintora/controls/Theme.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QWidget>

#include <numbers>

namespace VELTheme {

namespace {

// All paths lie in a square of 16 × 16.

QPainterPath gear()
{
    QPainterPath path;
    constexpr int teeth = 8;
    constexpr double inner = 4.6;
    constexpr double outer = 6.6;
    for (int i = 0; i < teeth * 4; ++i) {
        const double angle = (double(i) - 1.5) * 2 * std::numbers::pi / (teeth * 4);
        const double distance = i % 4 < 2 ? inner : outer;
        const QPointF point(8 + distance * std::cos(angle), 8 + distance * std::sin(angle));
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.closeSubpath();
    path.addEllipse(QPointF(8, 8), 2, 2);
    return path;
}

QPainterPath undo()
{
    QPainterPath path;
    path.moveTo(6, 3);
    path.lineTo(2.8, 6.2);
    path.lineTo(6, 9.4);
    path.moveTo(2.8, 6.2);
    path.lineTo(9.2, 6.2);
    path.cubicTo(14.4, 6.2, 14.4, 13, 9.2, 13);
    path.lineTo(6.4, 13);
    return path;
}

/// An arrow upwards, hollow, as on the key.
QPainterPath pin()
{
    QPainterPath path;
    path.moveTo(8, 2.2);
    path.lineTo(13.4, 7.8);
    path.lineTo(10.4, 7.8);
    path.lineTo(10.4, 13.4);
    path.lineTo(5.6, 13.4);
    path.lineTo(5.6, 7.8);
    path.lineTo(2.6, 7.8);
    path.closeSubpath();
    return path;
}

QPainterPath star()
{
    QPainterPath path;
    constexpr int points = 5;
    constexpr double outer = 6.4;
    constexpr double inner = 2.9;
    for (int i = 0; i < 2 * points; ++i) {
        const double angle = i * std::numbers::pi / points;
        const double distance = i % 2 == 0 ? outer : inner;
        const QPointF point(8 + distance * std::sin(angle), 8.4 - distance * std::cos(angle));
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

/// A round that ends in an arrow.
QPainterPath loop()
{
    QPainterPath path;
    path.arcMoveTo(3, 3, 10, 10, 30);
    path.arcTo(3, 3, 10, 10, 30, 300);
    path.moveTo(12.6, 2.2);
    path.lineTo(12.6, 5.6);
    path.lineTo(9.2, 5.6);
    return path;
}

QPainterPath pathOf(Glyph glyph)
{
    QPainterPath path;
    switch (glyph) {
    case Glyph::plus:
        path.moveTo(8, 3);
        path.lineTo(8, 13);
        path.moveTo(3, 8);
        path.lineTo(13, 8);
        return path;
    case Glyph::gear:
        return gear();
    case Glyph::undo:
        return undo();
    case Glyph::pin:
        return pin();
    case Glyph::close:
        path.moveTo(4, 4);
        path.lineTo(12, 12);
        path.moveTo(12, 4);
        path.lineTo(4, 12);
        return path;
    case Glyph::search:
        path.addEllipse(QPointF(7, 7), 4.2, 4.2);
        path.moveTo(10.2, 10.2);
        path.lineTo(13.6, 13.6);
        return path;
    case Glyph::copy:
        path.addRoundedRect(5.5, 5.5, 8, 8, 1.5, 1.5);
        path.moveTo(10.5, 2.5);
        path.lineTo(4, 2.5);
        path.quadTo(2.5, 2.5, 2.5, 4);
        path.lineTo(2.5, 10.5);
        return path;
    case Glyph::more:
        path.moveTo(5, 7);
        path.lineTo(8, 10);
        path.lineTo(11, 7);
        return path;
    case Glyph::star:
    case Glyph::starred:
        return star();
    case Glyph::check:
        path.moveTo(3.5, 8.5);
        path.lineTo(6.5, 11.5);
        path.lineTo(12.5, 5);
        return path;
    case Glyph::waiting:
        for (const double x : {4.0, 8.0, 12.0})
            path.addEllipse(QPointF(x, 8), 0.6, 0.6);
        return path;
    case Glyph::inspector:
        path.addRoundedRect(2.5, 3, 11, 10, 1.5, 1.5);
        path.moveTo(2.5, 9.5);
        path.lineTo(13.5, 9.5);
        return path;
    case Glyph::play:
        path.moveTo(5, 3);
        path.lineTo(13, 8);
        path.lineTo(5, 13);
        path.closeSubpath();
        return path;
    case Glyph::stop:
        for (const double x : {5.5, 10.5}) {
            path.moveTo(x, 3.5);
            path.lineTo(x, 12.5);
        }
        return path;
    case Glyph::loop:
        return loop();
    case Glyph::sound:
        for (const auto &[x, reach] : {std::pair(2.5, 1.5), {5.25, 4.0}, {8.0, 5.5}, {10.75, 3.0}, {13.5, 1.0}}) {
            path.moveTo(x, 8 - reach);
            path.lineTo(x, 8 + reach);
        }
        return path;
    case Glyph::alert:
        path.moveTo(8, 3);
        path.lineTo(8, 9.5);
        path.addEllipse(QPointF(8, 12.6), 0.5, 0.5);
        return path;
    }
    return path;
}

/// Draws a sign in the colours that its widget has at the time.
class GlyphEngine : public QIconEngine
{
public:
    GlyphEngine(Glyph glyph, const QWidget &widget)
        : m_glyph(glyph)
        , m_widget(&widget)
    {}

    void paint(QPainter *painter, const QRect &rectangle, QIcon::Mode mode, QIcon::State state) override
    {
        if (!m_widget)
            return;
        const Colors &now = colors(*m_widget);
        const QColor colour = mode == QIcon::Disabled ? now.disabled : state == QIcon::On ? now.accent : now.text;
        VELTheme::paint(*painter, m_glyph, rectangle, colour);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new GlyphEngine(*this); }

private:
    Glyph m_glyph;
    QPointer<const QWidget> m_widget;
};

} // namespace

QIcon icon(Glyph glyph, const QWidget &widget)
{
    return QIcon(new GlyphEngine(glyph, widget));
}

void paint(QPainter &painter, Glyph glyph, const QRectF &rectangle, const QColor &colour)
{
    constexpr double side = 16;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rectangle.topLeft());
    painter.scale(rectangle.width() / side, rectangle.height() / side);
    painter.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(glyph == Glyph::starred ? QBrush(colour) : QBrush(Qt::NoBrush));
    painter.drawPath(pathOf(glyph));
    painter.restore();
}

} // namespace VELTheme
