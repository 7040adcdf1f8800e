#pragma once

#include "app/Lintora/sound/Player.h"
#include "app/model/LintoraModel.h"

/// Does what is asked of the player for the current cue, and what is done to that cue at the playhead.
///
/// A cue that is looped is played with its new times as soon as they change.
class Transport : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 halfSecond = 500; ///< Milliseconds, of the beginning or the end of a cue.
    static constexpr qint64 backStep = 1'000; ///< Milliseconds.

    /// Both must live as long as this.
    Transport(LintoraModel &model, Player &player, QObject *parent = nullptr);

    void perform(PlayCommand command); ///< Playing is refused without a medium.

    std::optional<qsizetype> cue() const { return m_cue; }
    void setCue(std::optional<qsizetype> cue) { m_cue = cue; } ///< The current one. Nothing is played for that.
    void goTo(qsizetype cue); ///< The same for one that was chosen: plays it in a review, else the playhead goes there.

    bool loops() const { return m_loops; }
    bool reviews() const { return m_reviews; }
    bool playsOn() const; ///< Whether it plays from cue to cue, instead of a part that was asked for.

Q_SIGNALS:
    void modeChanged(); ///< It loops or reviews, or no longer.
    void cueCut(qsizetype second);

private:
    const Subtitle *current() const;
    void playCue();
    void playStretch(qint64 startMS, qint64 endMS);
    void playOrStop();
    void playFaster();
    void setBorder(bool (CueTiming::*set)(qsizetype cue, qint64 timeMS));
    void cut();
    void followCues();

    LintoraModel &m_model;
    Player &m_player;
    std::optional<qsizetype> m_cue;
    bool m_loops = false;
    bool m_reviews = false;
    CueTimeline::Room m_stretch; ///< The part that was asked for last; empty for all.
    bool m_playsCue = false;     ///< Whether that part is the current cue.
};
