#pragma once

#include <QBasicTimer>
#include <QWidget>

#include <optional>

/// Shows how far something is that is under way; that it is under way, where nobody knows how far.
class BusyBar : public QWidget
{
    Q_OBJECT

public:
    explicit BusyBar(QWidget *parent = nullptr);

    void setShare(std::optional<double> share); ///< What is done, 0 to 1; absent: not known.

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void followTimer();

    std::optional<double> m_share;
    QBasicTimer m_timer; ///< Runs while the bar is seen and has no share to show.
    int m_phase = 0;     ///< In points.
};
