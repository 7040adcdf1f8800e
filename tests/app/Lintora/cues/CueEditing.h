#pragma once

#include "tests/app/Lintora/PanelTest.h"

#include <QApplication>
#include <QLineEdit>

/// Cues edited in the table, with the mouse, the keyboard and an input method.
class CueEditing : public PanelTest
{
protected:
    void editWith(int cue, const QString &text)
    {
        edit(cue);
        ASSERT_NE(editor(), nullptr);
        editor()->selectAll();
        type(text);
    }

    QLineEdit *timeField(int cue, int column)
    {
        const QModelIndex index = table().model()->index(cue, column);
        table().setCurrentIndex(index);
        table().setFocus();
        press(Qt::Key_Return);
        return qobject_cast<QLineEdit *>(QApplication::focusWidget());
    }
};
