#pragma once

#include "app/model/ai/AIWork.h"

#include <QBasicTimer>
#include <QWidget>

class BusyBar;
class ElidedLabel;
class QLabel;
class QPushButton;

/// The work that owns the cues while it goes on: its stages, how long they have taken, what is left, and the way to end
/// it.
class WorkView : public QWidget
{
    Q_OBJECT

public:
    /// `work` must live as long as this.
    explicit WorkView(const AIWork &work, QWidget *parent = nullptr);

Q_SIGNALS:
    void cancelRequested();

protected:
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void follow();
    void showTimes();

    const AIWork &m_work;
    QLabel *m_past; ///< The stages that are over, one a line.
    ElidedLabel *m_now;
    ElidedLabel *m_times;
    BusyBar *m_bar;
    QBasicTimer m_timer; ///< For the times, while the view is seen.
};
