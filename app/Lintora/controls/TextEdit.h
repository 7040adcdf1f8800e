#pragma once

#include <QPlainTextEdit>

/// A text of several lines that is typed or pasted. Of files that are dropped or pasted no addresses are put in: they
/// are the window's.
class TextEdit : public QPlainTextEdit
{
    Q_OBJECT

public:
    using QPlainTextEdit::QPlainTextEdit;

protected:
    bool canInsertFromMimeData(const QMimeData *source) const override;
};
