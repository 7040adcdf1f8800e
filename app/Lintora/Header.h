#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

/// The program's name, where its engines work, and the button that keeps the window in front.
class Header : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit Header(LintoraModel &model, QWidget *parent = nullptr);
};
