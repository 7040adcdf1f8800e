#include "app/Lintora/drag/MaterialDrop.h"

#include "app/model/FCPPasteboard.h"

#include <QDropEvent>
#include <QWidget>

#include <algorithm>

MaterialDrop::MaterialDrop(QWidget &area, LintoraModel &model)
    : QObject(&area)
    , m_model(model)
{
    area.setAcceptDrops(true);
    area.installEventFilter(this);
}

bool MaterialDrop::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
        hover(static_cast<QDropEvent &>(*event));
        return true;
    case QEvent::DragLeave:
        setHovering(false);
        return true;
    case QEvent::Drop:
        drop(static_cast<QDropEvent &>(*event));
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

bool MaterialDrop::canTake(const QMimeData &pasteboard) const
{
    if (m_model.window().subtitleDragInProgress)
        return false;
    return FCPPasteboard::offeredType(pasteboard) ||
           std::ranges::any_of(pasteboard.urls(), [](const QUrl &url) { return url.isLocalFile(); });
}

void MaterialDrop::hover(QDropEvent &event)
{
    const bool takes = canTake(*event.mimeData());
    setHovering(takes);
    // Always a copy: a source that is told of a move would delete what was dragged.
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(takes);
}

void MaterialDrop::drop(QDropEvent &event)
{
    setHovering(false);
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(canTake(*event.mimeData()) && m_model.receive(*event.mimeData()));
}

void MaterialDrop::setHovering(bool hovering)
{
    if (m_hovering == hovering)
        return;
    m_hovering = hovering;
    Q_EMIT hoveringChanged();
}
