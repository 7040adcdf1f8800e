#pragma once

#include "app/Lintora/Panel.h"
#include "app/Lintora/cues/CueTable.h"
#include "tests/app/TemporaryModel.h"

#include <gtest/gtest.h>

#include <QAbstractButton>

/// The real panel in a shown, active window, on a model in a folder of its own.
class PanelTest : public testing::Test
{
protected:
    /// Local engines work with these.
    explicit PanelTest(const QList<LocalModel> &models = LocalModels::catalog());

    /// A session of one track with a cue for each text, two seconds each and one behind the other.
    void load(const QStringList &texts);

    /// A session of two tracks, the first of which is selected.
    void loadTracks(const QStringList &chinese, const QStringList &english);

    QStringList texts() const;        ///< Of the selected track.
    QString status() const;           ///< What the status line says.
    QStringList visibleTexts() const; ///< Of all labels.

    CueTable &table() { return panel->table(); }

    /// The control of that class and accessible name that can be seen; null when there is none.
    template <class Widget>
    Widget *find(const QString &name) const
    {
        for (Widget *const each : panel->findChildren<Widget *>()) {
            if (each->accessibleName() == name && each->isVisible())
                return each;
        }
        return nullptr;
    }

    QAbstractButton *button(const QString &name) const { return find<QAbstractButton>(name); }
    void click(const QString &name); ///< The button of that name, with the mouse. There must be one.

    CueTextEditor *editor() const; ///< The open one; null when there is none.
    void edit(int cue);            ///< Opens the editor by a double click.

    /// Keys go to what has the focus.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void type(const QString &text) const;    ///< As an input method commits it.
    void compose(const QString &text) const; ///< As an input method shows what is not yet committed.

    TemporaryModel outside;
    LintoraModel model;
    QWidget window; ///< The panel's parent, so that there is something outside it.
    LintoraPanel *panel = nullptr;
};
