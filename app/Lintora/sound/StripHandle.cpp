#include "app/Lintora/sound/StripHandle.h"

#include "app/Lintora/controls/Theme.h"

#include <QKeyEvent>
#include <QPainter>

StripHandle::StripHandle(const QString &name, QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(name);
    setCursor(Qt::SizeVerCursor);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize StripHandle::sizeHint() const
{
    return {0, VELTheme::gap};
}

void StripHandle::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    constexpr int length = 8 * VELTheme::step;
    painter.fillRect(QRect(0, height() / 2, width(), 1), colors.border);
    painter.fillRect(QRect((width() - length) / 2, height() / 2 - 1, length, 3),
                     hasFocus() ? colors.accent : colors.outline);
}

void StripHandle::mousePressEvent(QMouseEvent *event)
{
    m_from = qRound(event->position().y());
}

/// It moves along with what it changes: where it was held is always the measure.
void StripHandle::mouseMoveEvent(QMouseEvent *event)
{
    if (const int by = m_from - qRound(event->position().y()); event->buttons().testFlag(Qt::LeftButton) && by != 0)
        Q_EMIT moved(by);
}

void StripHandle::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    Q_EMIT letGo();
}

void StripHandle::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Up && event->key() != Qt::Key_Down) {
        QWidget::keyPressEvent(event);
        return;
    }
    Q_EMIT moved(event->key() == Qt::Key_Up ? VELTheme::gap : -VELTheme::gap);
    Q_EMIT letGo();
}
