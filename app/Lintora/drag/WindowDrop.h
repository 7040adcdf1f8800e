#pragma once

#include "app/Lintora/drag/MaterialDrop.h"

#include <QWidget>

/// Lets material be dropped anywhere on a window, and shows that it can be, by a frame around all of it.
class WindowDrop : public QWidget
{
    Q_OBJECT

public:
    /// Lies over `window`, its parent. `model` must live as long.
    WindowDrop(LintoraModel &model, QWidget &window);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();

    MaterialDrop *const m_drop;
};
