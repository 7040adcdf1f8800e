#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/tools/KeywordMatchModel.h"
#include "app/model/LintoraModel.h"

class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QStackedWidget;

/// Finding and replacing a keyword in all cues of the selected track, with a preview of every cue that would change.
class FindReplaceWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    FindReplaceWorkspace(LintoraModel &model, QWidget *content);

    void present(); ///< Opens with the keyboard in the keyword field.
    bool editsSession() const override { return true; }

Q_SIGNALS:
    void queryChanged(const QString &query);
    void cueRequested(qsizetype cue); ///< To be shown in the table.

private:
    QWidget *makeFields();
    QWidget *makePreview();
    QWidget *makeButtons();
    void preview();
    void replace();
    void undoReplacement();
    void followUndo();
    void setNote(const QString &note, bool isFailure);

    LintoraModel &m_model;
    KeywordMatchModel m_matches;
    QLineEdit *m_query;
    QLineEdit *m_replacement;
    QLabel *m_note;
    QLabel *m_placeholder;
    QListView *m_list;
    QStackedWidget *m_preview;
    QPushButton *m_replace;
    QPushButton *m_undo;
};
