#include "app/Lintora/controls/LineEdit.h"

#include <QDragEnterEvent>
#include <QMimeData>

void LineEdit::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->ignore();
    else
        QLineEdit::dragEnterEvent(event);
}
