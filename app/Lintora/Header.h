#pragma once

#include "app/model/WindowState.h"
#include "app/model/ai/AISettings.h"

#include <QWidget>

/// The program's name, where the engines are, and the button that keeps the window in front.
class Header : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    Header(WindowState &window, const AISettings &settings, QWidget *parent = nullptr);
};
