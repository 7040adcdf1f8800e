#include "app/Lintora/controls/ChoiceBox.h"

#include "app/Lintora/controls/Theme.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QWheelEvent>

ChoiceBox::ChoiceBox(const QString &name, QWidget *parent)
    : QComboBox(parent)
{
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMaxVisibleItems(16);
    view()->setTextElideMode(Qt::ElideRight);
}

void ChoiceBox::showPopup()
{
    if (m_isListedElsewhere)
        Q_EMIT listRequested();
    else
        QComboBox::showPopup();
}

QSize ChoiceBox::sizeHint() const
{
    return {40 * VELTheme::step, VELTheme::controlHeight};
}

QSize ChoiceBox::minimumSizeHint() const
{
    return {20 * VELTheme::step, VELTheme::controlHeight};
}

void ChoiceBox::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double pen = hasFocus() ? 2 : 1;
    painter.setBrush(!isEnabled() ? colors.window : underMouse() ? colors.hovered : colors.raised);
    painter.setPen(QPen(hasFocus() ? colors.accent : isEnabled() ? colors.outline : colors.border, pen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), VELTheme::radius,
                            VELTheme::radius);
    const QColor ink = isEnabled() ? colors.text : colors.disabled;
    const QRect sign(width() - VELTheme::iconSize - VELTheme::gap, (height() - VELTheme::iconSize) / 2,
                     VELTheme::iconSize, VELTheme::iconSize);
    VELTheme::paint(painter, VELTheme::Glyph::more, sign, ink);
    const QRect room(VELTheme::gap, 0, sign.left() - VELTheme::gap - VELTheme::step, height());
    painter.setPen(ink);
    painter.drawText(room, Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, room.width()));
}

void ChoiceBox::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
