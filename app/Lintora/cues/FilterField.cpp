#include "app/Lintora/cues/FilterField.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>

using namespace Qt::StringLiterals;

FilterField::FilterField(QWidget *parent)
    : QLineEdit(parent)
{
    setPlaceholderText(u"筛选…"_s);
    setAccessibleName(u"筛选字幕"_s);
    setClearButtonEnabled(true);
}

void FilterField::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->ignore();
    else
        QLineEdit::dragEnterEvent(event);
}

void FilterField::inputMethodEvent(QInputMethodEvent *event)
{
    m_isComposing = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
}

void FilterField::keyPressEvent(QKeyEvent *event)
{
    switch (m_isComposing ? 0 : event->key()) {
    case Qt::Key_Escape:
        clear();
        Q_EMIT left();
        break;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT left();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}
