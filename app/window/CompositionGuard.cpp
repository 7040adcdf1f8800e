#include "app/window/CompositionGuard.h"

#include <QCoreApplication>
#include <QInputMethodEvent>

CompositionGuard::CompositionGuard(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool CompositionGuard::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::InputMethod:
        m_composing = static_cast<const QInputMethodEvent *>(event)->preeditString().isEmpty() ? nullptr : watched;
        break;
    case QEvent::FocusOut:
    case QEvent::Destroy:
        if (watched == m_composing)
            m_composing = nullptr;
        break;
    case QEvent::ShortcutOverride:
        if (watched != m_composing)
            break;
        event->accept();
        return true;
    default:
        break;
    }
    return false;
}
