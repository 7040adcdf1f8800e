#pragma once

#include "app/model/LintoraModel.h"

#include <QMenu>

/// The menu of the timing strip: shows and folds it, plays, and sets times at the playhead. While the strip is folded
/// it offers nothing but to show it.
class PlayMenu : public QMenu
{
    Q_OBJECT

public:
    /// `model` must live as long as the menu.
    explicit PlayMenu(LintoraModel &model, QWidget *parent = nullptr);

private:
    void add(const QString &title, PlayCommand command, const QKeySequence &key = {});
    void follow();

    LintoraModel &m_model;
    QAction *m_strip;
    QList<QAction *> m_commands;
};
