#pragma once

#include <QWidget>

/// The upper edge of something whose height is dragged, or changed by up and down while it has the keyboard.
class StripHandle : public QWidget
{
    Q_OBJECT

public:
    explicit StripHandle(const QString &name, QWidget *parent = nullptr);

    QSize sizeHint() const override;

Q_SIGNALS:
    void moved(int points); ///< Upwards, since it was told last.
    void letGo();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_from = 0; ///< Where the pointer holds it, from its own top.
};
