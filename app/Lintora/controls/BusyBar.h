#pragma once

#include <QBasicTimer>
#include <QWidget>

/// Shows that something is under way whose end is not known.
class BusyBar : public QWidget
{
    Q_OBJECT

public:
    explicit BusyBar(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QBasicTimer m_timer; ///< Runs while the bar is seen.
    int m_phase = 0;     ///< In points.
};
