#pragma once

#include "app/Lintora/cues/CueTable.h"

class CheckBox;
class ElidedLabel;
class QPushButton;

/// What can be done with cues that are marked: go from one to the next; those that the recogniser has likely invented,
/// tick and take away; those whose times were guessed, say that they are right. Seen while the selected track has some.
class SuspectBar : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    SuspectBar(LintoraModel &model, CueTable &table, QWidget *parent = nullptr);

    void goToNext(); ///< From the current cue, beginning anew behind the last. Nothing while there is none.

Q_SIGNALS:
    void cueRequested(qsizetype cue); ///< To be shown in the table.

private:
    void follow();
    std::optional<Subtitle> currentCue() const;

    LintoraModel &m_model;
    CueTable &m_table;
    ElidedLabel *m_text;
    CheckBox *m_tick;
    QPushButton *m_right;
    QPushButton *m_next;
    QPushButton *m_remove;
};
