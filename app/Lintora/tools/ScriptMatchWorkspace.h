#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/tools/ScriptRowsModel.h"
#include "app/model/LintoraModel.h"

class ElidedLabel;
class QLabel;
class QListView;
class QPlainTextEdit;
class QPushButton;
class QTabBar;

/// What a transcript is good for: correcting the wording of the selected track, or making subtitles of it.
///
/// Transcript and proposals are kept by the model: closing loses nothing.
class ScriptMatchWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    ScriptMatchWorkspace(LintoraModel &model, QWidget *content);

    /// Adds what makes subtitles of the transcript, which is seen below it while that way is chosen.
    void addTiming(QWidget *timing);

    void present();
    bool editsSession() const override { return true; }

private:
    QWidget *makeChoices();
    QWidget *makeButtons();
    void follow();
    void followWay();

    LintoraModel &m_model;
    ScriptMatching &m_matching;
    ScriptRowsModel m_rows;
    QLabel *m_heading;
    QTabBar *m_ways;
    QLabel *m_note;
    QPlainTextEdit *m_text;
    QListView *m_list;
    QWidget *m_timing = nullptr;
    QWidget *m_buttons;
    QWidget *m_choices = nullptr; ///< About the rows; there while there are some.
    QPushButton *m_all;
    ElidedLabel *m_status;
    QPushButton *m_match;
    QPushButton *m_undo;
    QPushButton *m_apply;
};
