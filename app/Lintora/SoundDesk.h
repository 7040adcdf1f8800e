#pragma once

#include "app/Lintora/sound/Player.h"
#include "app/model/LintoraModel.h"

class CueTable;
class Inspector;
class TimingStrip;

/// What plays the sound, and how the table, the strip and the picture follow it and each other.
class SoundDesk : public QObject
{
    Q_OBJECT

public:
    /// All must live as long as this. The strip is made in `place`, where it is shown while the window is to show it;
    /// the table then keeps room for some rows.
    SoundDesk(LintoraModel &model, CueTable &table, Inspector &inspector, QWidget *place);

    TimingStrip &strip() { return *m_strip; }
    Player &player() { return m_player; }

Q_SIGNALS:
    void cueRequested(qsizetype cue); ///< To be the current one, wherever it is.
    void keyboardFreed();             ///< The strip has the keyboard and is about to go.

private:
    void followWindow();
    void followSound();
    void showMedium(Inspector &inspector);

    LintoraModel &m_model;
    CueTable &m_table;
    Player m_player{this};
    TimingStrip *m_strip;
};
