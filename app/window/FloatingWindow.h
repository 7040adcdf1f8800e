#pragma once

#include "app/model/Preferences.h"

#include <QMainWindow>
#include <QTimer>

/// The program's one window. It hosts the panel, comes back where it was, and stands above the windows of other
/// programs while it is pinned.
class FloatingWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Takes `panel`. `preferences` must live as long as the window.
    FloatingWindow(QWidget *panel, Preferences &preferences, QMenuBar *menuBar);
    ~FloatingWindow() override;

    /// Stands above other programs' windows from now on, or among them. The window system forgets; this object does
    /// not.
    void setPinned(bool pinned);

    /// Shows the window, out of the dock too, and makes it the one that is typed into.
    void showInFront();

    /// Puts the window in front of all others, where it can be seen, without taking the keyboard from the active
    /// program.
    void raiseQuietly();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void restoreFrame();
    void rememberFrame();
    void applyStanding();

    Preferences &m_preferences;
    bool m_pinned = false;
    QTimer m_frameChanged; ///< Runs while the frame has changed and is not remembered.
};
