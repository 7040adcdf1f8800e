#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/tools/CueToolRows.h"
#include "app/model/LintoraModel.h"

class ElidedLabel;
class QListView;
class QPushButton;

/// Breaking, checking and converting the cues of the selected track: the tool's limits, and below them what it would do
/// with these, before it is done.
class CueToolWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    CueToolWorkspace(LintoraModel &model, CueTools::Tool tool, QWidget *content);

    void present(); ///< Opens with the keyboard at the first limit.
    bool editsSession() const override { return true; }

Q_SIGNALS:
    void cueRequested(qsizetype cue); ///< To be shown in the table.

private:
    using Settings = CueTools::Settings;

    QWidget *makeControls();
    void addBreaking(QWidget *controls);
    void addChecking(QWidget *controls);
    void addScript(QWidget *controls);
    QWidget *makeList();
    QWidget *makeButtons();
    void follow();
    void change(const std::function<void(Settings &)> &change);

    LintoraModel &m_model;
    CueTools &m_tools;
    CueTools::Tool m_tool;
    CueToolRows m_rows;
    QWidget *m_first = nullptr; ///< What is typed into first.
    QListView *m_list;
    QWidget *m_page = nullptr; ///< In the place of the list, for a tool that has one.
    ElidedLabel *m_status;
    QPushButton *m_all;
    QPushButton *m_apply;
};
