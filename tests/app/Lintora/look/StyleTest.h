#pragma once

#include "app/Lintora/look/StyleWorkspace.h"
#include "tests/app/TemporaryModel.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

/// The style workspace over a shown, active window, with fonts that are not there.
class StyleTest : public testing::Test
{
protected:
    StyleTest();

    /// The control of that class and accessible name that can be seen; null when there is none.
    template <class Widget>
    Widget *find(const QString &name) const
    {
        for (Widget *const each : window.findChildren<Widget *>()) {
            if (each->accessibleName() == name && each->isVisible())
                return each;
        }
        return nullptr;
    }

    QLineEdit *field(const QString &name) const { return find<QLineEdit>(name); }
    QComboBox *choice(const QString &name) const { return find<QComboBox>(name); }
    void click(const QString &name); ///< The button of that name, with the mouse. There must be one.

    /// Types over what a field holds; without Return it is not done yet.
    void type(const QString &name, const QString &text);
    void enter(const QString &name, const QString &text);

    /// Opens a list and chooses with the keyboard.
    void choose(const QString &name, const QString &entry);

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const; ///< Goes to what has the focus.
    QStringList visibleTexts() const;                                            ///< Of all labels.
    int steps();                                                                 ///< How often can be undone.
    void settle();                                                               ///< Until no long work is left.

    TemporaryModel outside;
    LintoraModel model{outside.surroundings()};
    QWidget window;
    StyleWorkspace *workspace = nullptr;
};
