#pragma once

#include "app/model/LintoraModel.h"

#include <QMenu>
#include <QPointer>

/// The menu of editing. Its entries act on what has the focus: on the text of a field that is being edited, else on the
/// history of the session, and on what the focused control, or what it lies in, offers as slots: cut(), copy(),
/// paste(), selectAll(), and the commands on cues.
///
/// Before the history of the session comes what lies nearer to the focus and has one of its own: the slots undo() and
/// redo(), the properties `undoTitle` and `redoTitle`, which say what they do and are empty while they do nothing, and
/// the signal undoChanged(). Its property `editsSession` tells whether the session's history can be reached from there
/// at all. The entries name what they take back.
///
/// An entry is enabled exactly while it would do something; pasting, while there is something to paste into.
class EditMenu : public QMenu
{
    Q_OBJECT

public:
    /// `model` must live as long as the menu.
    explicit EditMenu(LintoraModel &model, QWidget *parent = nullptr);
    ~EditMenu() override;

private Q_SLOTS:
    void followHistory();

private:
    struct Step;

    Step nextStep(bool undoes) const;
    /// Where a command on cues is offered.
    enum class Reach
    {
        everywhere,
        outsideTexts ///< In a text its key means something else.
    };

    struct Command
    {
        QAction *action;
        const char *slot;
        Reach reach;
    };

    QAction *add(const QString &title, const QKeySequence &key, const char *slot);
    void addCueCommands();
    QWidget *performer(const Command &command) const;
    void follow(QWidget *focus);
    void update();
    void perform(const char *slot);

    LintoraModel &m_model;
    QPointer<QWidget> m_owner;        ///< What lies nearest to the target and has a history of its own.
    QPointer<QWidget> m_target;       ///< What has, or outside menus had last, the focus.
    std::unique_ptr<QObject> m_watch; ///< Holds the connections to the target.
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QAction *m_cut = nullptr;
    QAction *m_copy = nullptr;
    QAction *m_paste = nullptr;
    QAction *m_selectAll = nullptr;
    QList<Command> m_commands; ///< On cues.
};
