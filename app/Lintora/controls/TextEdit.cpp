#include "app/Lintora/controls/TextEdit.h"

#include <QMimeData>

bool TextEdit::canInsertFromMimeData(const QMimeData *source) const
{
    return !source->hasUrls() && QPlainTextEdit::canInsertFromMimeData(source);
}
