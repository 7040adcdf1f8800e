#include "app/Lintora/drag/WindowDrop.h"

#include "app/Lintora/controls/Theme.h"

#include <QEvent>
#include <QPainter>

WindowDrop::WindowDrop(LintoraModel &model, QWidget &window)
    : QWidget(&window)
    , m_drop(new MaterialDrop(window, model))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    window.installEventFilter(this);
    connect(m_drop, &MaterialDrop::hoveringChanged, this, &WindowDrop::follow);
    follow();
}

void WindowDrop::follow()
{
    setVisible(m_drop->isHovering());
    setGeometry(parentWidget()->rect());
    raise();
}

bool WindowDrop::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void WindowDrop::paintEvent(QPaintEvent * /*event*/)
{
    constexpr double width = 3;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(VELTheme::colors(*this).accent, width));
    painter.drawRoundedRect(QRectF(rect()).adjusted(width, width, -width, -width), VELTheme::radius, VELTheme::radius);
}
