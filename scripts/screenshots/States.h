#pragma once

#include "app/Lintora/Panel.h"
#include "app/model/LintoraModel.h"

#include <functional>

/// A state of the window that is worth a picture.
struct State
{
    QString name; ///< Of the picture's file.
    std::function<void(LintoraModel &, LintoraPanel &)> reach;
};

QList<State> states(); ///< All of them, each from an empty window.
