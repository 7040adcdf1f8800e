#include "app/Lintora/controls/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

QString ElidedLabel::onOneLine() const
{
    return text().simplified();
}

bool ElidedLabel::isElided() const
{
    return fontMetrics().horizontalAdvance(onOneLine()) > contentsRect().width();
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(onOneLine(), m_elideMode, contentsRect().width());
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isElided()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), int(alignment()) | Qt::TextSingleLine, shownText());
}
