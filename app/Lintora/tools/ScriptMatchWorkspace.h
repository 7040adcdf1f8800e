#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/tools/ScriptRowsModel.h"
#include "app/model/LintoraModel.h"

class ElidedLabel;
class QListView;
class QPlainTextEdit;
class QPushButton;

/// Correcting the wording of the selected track by a transcript.
///
/// Transcript and proposals are kept by the model: closing loses nothing.
class ScriptMatchWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    ScriptMatchWorkspace(LintoraModel &model, QWidget *content);

    void present();
    bool editsSession() const override { return true; }

private:
    QWidget *makeButtons();
    void follow();

    LintoraModel &m_model;
    ScriptMatching &m_matching;
    ScriptRowsModel m_rows;
    QPlainTextEdit *m_text;
    QListView *m_list;
    ElidedLabel *m_status;
    QPushButton *m_match;
    QPushButton *m_undo;
    QPushButton *m_apply;
};
