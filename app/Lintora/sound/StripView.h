#pragma once

#include "app/Lintora/sound/StripGesture.h"
#include "app/model/LintoraModel.h"

#include <QBasicTimer>
#include <QWidget>

class Player;

/// The sound of the medium with the cues of the selected track over it, along the timeline.
///
/// The ruler, and a click on the sound, put the playhead there. A cue, one of its borders or both of two that touch are
/// dragged: with Command (Control elsewhere) one of the two alone, with Option (Alt) without snapping, with Shift over
/// neighbours. A drag where no cue is draws a new one. What is dragged is shown; the cues change when it is let go, as
/// one step, and not at all when Escape is pressed before.
///
/// The wheel scrolls, with Command it zooms, as two fingers do. Keys: left and right go by frames, with Shift by
/// seconds, up and down by cues, plus and minus zoom, page keys, Home and End scroll, Return edits.
class StripView : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    StripView(LintoraModel &model, Player &player, QWidget *parent = nullptr);

    const CueTimeline &cues(); ///< Those of the selected track, as they are.
    const TimeScale &scale() const { return m_scale; }

    std::optional<qsizetype> current() const { return m_current; }
    void setCurrent(std::optional<qsizetype> cue); ///< The cue that is worked on. It is not scrolled to.
    void bring(qsizetype cue);                     ///< Scrolls so that the cue is in the middle, unless one is held.

    void zoom(double factor); ///< Around the playhead where that is seen, else around the middle.

    QSize sizeHint() const override;

Q_SIGNALS:
    void cueRequested(qsizetype cue);  ///< To be the current one: it was pointed at.
    void cueStepped(qsizetype cue);    ///< The same for one that may be out of sight.
    void editRequested(qsizetype cue); ///< Its text.
    void cueDrawn(qsizetype cue);      ///< A new one, which has no words yet.

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void followCues();
    void followPlayhead(qint64 ms);
    void followLength();
    CueDrag::Rules rules(Qt::KeyboardModifiers modifiers) const;
    std::optional<CueDrag::Grip> gripAt(QPointF place, Qt::KeyboardModifiers modifiers);
    void press(QPointF place, Qt::KeyboardModifiers modifiers);
    void dragTo(double x, Qt::KeyboardModifiers modifiers);
    void letGo();
    void giveUp();
    void showCursor(QPointF place, Qt::KeyboardModifiers modifiers);
    void stepPlayhead(int direction, Qt::KeyboardModifiers modifiers);
    void stepCue(int direction);
    void update(const std::function<void()> &change);

    /// What the left button does while it is down.
    enum class Pressed
    {
        nothing,
        playhead,
        held ///< What the gesture holds.
    };

    LintoraModel &m_model;
    Player &m_player;
    TimeScale m_scale;
    CueTimeline m_cues;
    bool m_areCuesOld = true; ///< Whether the cues have changed since they were looked at.
    std::optional<qsizetype> m_current;
    StripGesture m_gesture;
    Pressed m_pressed = Pressed::nothing;
    QPointF m_pressedAt;
    bool m_isDragging = false;         ///< Whether the pointer has gone far enough for a drag.
    Qt::KeyboardModifiers m_modifiers; ///< Of the drag, as they were last.
    double m_dragX = 0;                ///< Where the pointer is while it drags.
    QBasicTimer m_edgeTimer;           ///< Scrolls while the pointer drags beyond an edge.
    double m_playheadX = -1;           ///< Where the playhead was drawn.
};
