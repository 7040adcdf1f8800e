#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class CheckBox;
class ElidedLabel;
class QPushButton;
class QToolButton;

/// The row of what is done to the whole session.
class MainActions : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this. Before a tool is opened `mayAct` is asked.
    MainActions(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent = nullptr);

private:
    void offerTools();
    void update();

    LintoraModel &m_model;
    std::function<bool()> m_mayAct;
    QPushButton *m_tidy; ///< Opens the menu of the tools that go over all cues.
    ElidedLabel *m_source;
};

/// The row of what is done to the text of the selected track.
class EditingActions : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this. Before anything is done `mayAct` is asked.
    EditingActions(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent = nullptr);

Q_SIGNALS:
    void restoreRequested(); ///< Of the original from before separation; to be confirmed.

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void update();
    void undo();
    void offerUndo();
    void perform(const std::function<void()> &action) const;

    LintoraModel &m_model;
    std::function<bool()> m_mayAct;
    CheckBox *m_fillers;
    QToolButton *m_settings;
    CheckBox *m_punctuation;
    QPushButton *m_clean;
    QToolButton *m_undo;
    QPushButton *m_find;
    QPushButton *m_separate;
};
