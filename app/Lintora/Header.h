#pragma once

#include "app/model/WindowState.h"

#include <QWidget>

/// The program's name, and the button that keeps the window in front.
class Header : public QWidget
{
    Q_OBJECT

public:
    /// `window` must live as long as this.
    explicit Header(WindowState &window, QWidget *parent = nullptr);
};
