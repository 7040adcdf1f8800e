#include "app/Lintora/controls/CheckBox.h"

#include "app/Lintora/controls/Theme.h"

#include <QPainter>
#include <QPainterPath>

QSize CheckBox::sizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(this->text());
    return {boxSize + VELTheme::step + 2 + text + 2 * VELTheme::step, VELTheme::controlHeight};
}

void CheckBox::paintBox(QPainter &painter, const QRect &rectangle, const QWidget &widget, bool isChecked,
                        bool isEnabled)
{
    const VELTheme::Colors &colors = VELTheme::colors(widget);
    constexpr int half = boxSize / 2;
    const QRectF box(rectangle.center().x() - half + 1.5, rectangle.center().y() - half + 1.5, boxSize - 2,
                     boxSize - 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFilled = isChecked && isEnabled;
    painter.setPen(isFilled ? colors.accent : isEnabled ? colors.outline : colors.border);
    painter.setBrush(isFilled ? colors.accent : colors.surface);
    painter.drawRoundedRect(box, 3, 3);
    if (isChecked) {
        QPainterPath tick(box.topLeft() + QPointF(3.2, 7.2));
        tick.lineTo(box.topLeft() + QPointF(6, 10));
        tick.lineTo(box.topLeft() + QPointF(11, 4.2));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(
            QPen(isEnabled ? colors.onAccent : colors.disabled, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(tick);
    }
    painter.restore();
}

void CheckBox::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    QPainter painter(this);
    const QRect room = rect().adjusted(VELTheme::step, 0, -VELTheme::step, 0);
    paintBox(painter, {room.left(), 0, boxSize, height()}, *this, isChecked(), isEnabled());
    painter.setPen(isEnabled() ? colors.text : colors.disabled);
    painter.drawText(room.adjusted(boxSize + VELTheme::step + 2, 0, VELTheme::step, 0), Qt::AlignVCenter, text());
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(colors.accent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), VELTheme::radius, VELTheme::radius);
    }
}
