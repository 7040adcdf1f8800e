#include "app/Lintora/cues/FilterField.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

FilterField::FilterField(QWidget *parent)
    : LineEdit(parent)
{
    setPlaceholderText(u"筛选…"_s);
    setAccessibleName(u"筛选字幕"_s);
    setClearButtonEnabled(true);
}

void FilterField::inputMethodEvent(QInputMethodEvent *event)
{
    m_isComposing = !event->preeditString().isEmpty();
    LineEdit::inputMethodEvent(event);
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
        LineEdit::keyPressEvent(event);
    }
}
