#pragma once

#include "app/model/FileDialogs.h"

class QWidget;

/// The system's own dialogs for opening and saving, as sheets of a window. One at a time: a call while a dialog is open
/// brings that one forward.
///
/// `window` is asked at each call, and may answer null. It must be callable as long as the result is used.
FileDialogs systemFileDialogs(std::function<QWidget *()> window);
