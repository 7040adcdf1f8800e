#pragma once

#include "app/Lintora/cues/CueTable.h"

class CheckBox;
class ElidedLabel;
class QPushButton;

/// What can be done with cues that the recogniser has likely invented: go from one to the next, tick them, take the
/// ticked ones away. Seen while the selected track has some.
class SuspectBar : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    SuspectBar(LintoraModel &model, CueTable &table, QWidget *parent = nullptr);

Q_SIGNALS:
    void cueRequested(qsizetype cue); ///< To be shown in the table.

private:
    void follow();
    std::optional<Subtitle> currentCue() const;

    LintoraModel &m_model;
    CueTable &m_table;
    ElidedLabel *m_text;
    CheckBox *m_tick;
    QPushButton *m_next;
    QPushButton *m_remove;
};
