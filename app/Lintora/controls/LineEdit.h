#pragma once

#include <QLineEdit>

/// A line in which something is typed. Text can be dropped on it; files are the window's, and do not become their
/// addresses here.
class LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
};
