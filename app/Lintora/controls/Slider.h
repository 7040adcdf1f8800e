#pragma once

#include <QSlider>

/// A slider across in the theme's colours. A press takes the handle to the pointer; the wheel is left to whatever
/// scrolls.
class Slider : public QSlider
{
    Q_OBJECT

public:
    explicit Slider(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// What happens between these two is one movement: of the pointer while its button is down, or of a key that is
    /// held. Always in pairs.
    void gestureBegan();
    void gestureEnded();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    double positionOf(int value) const;
    int valueAt(double position) const;
    void begin();
    void end();

    bool m_isGesture = false;
};
