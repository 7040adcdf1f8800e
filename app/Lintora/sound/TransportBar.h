#pragma once

#include "app/Lintora/sound/Transport.h"

#include <QWidget>

class CheckBox;
class ChoiceBox;
class ElidedLabel;
class QPushButton;
class QToolButton;

/// The row of what is done with the sound: playing, how fast, what is heard, and where the playhead is.
class TransportBar : public QWidget
{
    Q_OBJECT

public:
    /// All must live as long as this.
    TransportBar(LintoraModel &model, Player &player, Transport &transport, QWidget *parent = nullptr);

private:
    void followPlaying();
    void followModes();
    void followRate();
    void followSound();
    void followPosition();

    LintoraModel &m_model;
    Player &m_player;
    Transport &m_transport;
    QToolButton *m_play;
    QPushButton *m_cue;
    QToolButton *m_loop;
    ChoiceBox *m_rate;
    ElidedLabel *m_time;
    ElidedLabel *m_sound;
    CheckBox *m_review;
};
