#pragma once

#include "app/Lintora/sound/Transport.h"

#include <QWidget>

class ElidedLabel;
class QLabel;
class QPushButton;
class StripHandle;
class StripView;

/// The strip below the table: the sound with the cues over it, what plays it, and, where there is no sound, what to do.
/// Folded until it is asked for. Its height is dragged at its upper edge, and kept between runs.
class TimingStrip : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    TimingStrip(LintoraModel &model, Player &player, QWidget *parent = nullptr);

    StripView &view() { return *m_view; }
    Transport &transport() { return *m_transport; }

    /// The cue that is worked on. One that was not chosen here comes into the middle; unless it was just reached by
    /// playing, it is played in a review, else the playhead goes there.
    void show(std::optional<qsizetype> cue);

    QSize sizeHint() const override;

Q_SIGNALS:
    void cueRequested(qsizetype cue);  ///< To be the current one: chosen here.
    void cueReached(qsizetype cue);    ///< The same, by playing.
    void editRequested(qsizetype cue); ///< Its text.

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// What a cue is told apart by, when others come and go.
    struct Shown
    {
        std::optional<QUuid> track;
        qsizetype position = -1;
        qint64 id = 0;

        friend bool operator==(const Shown &, const Shown &) = default;
    };

    void makeNote();
    void placeNote();
    void followPlayhead(qint64 ms);
    void followSound();
    void request(qsizetype cue, void (TimingStrip::*signal)(qsizetype cue));
    void changeHeight(int by);

    LintoraModel &m_model;
    Player &m_player;
    Transport *m_transport;
    StripView *m_view;
    QWidget *m_note = nullptr; ///< Over the view, where there is no sound to be seen.
    QLabel *m_noteText = nullptr;
    QPushButton *m_choose = nullptr;
    QPushButton *m_again = nullptr;
    Shown m_shown;
    bool m_isRequesting = false; ///< Whether the cue that is shown next was asked for here.
    int m_height;                ///< As it was dragged; where the window is low it is lower.
};
