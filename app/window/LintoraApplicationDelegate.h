#pragma once

#include "app/model/LintoraModel.h"
#include "app/platform/Platform.h"
#include "app/window/CompositionGuard.h"
#include "app/window/EditMenu.h"
#include "app/window/FloatingWindow.h"

#include <QMenuBar>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

/// What the application does at its launch, at its end, and when the system calls on it in between. Owns the model, the
/// menus and the window.
///
/// Files and links that the system opens are taken from the moment this object exists.
class LintoraApplicationDelegate : public QObject
{
    Q_OBJECT

public:
    /// Makes the content of the window; called once, when that is shown first.
    using PanelFactory = std::function<QWidget *(LintoraModel &)>;

    /// Of `surroundings`, settings and dialogs that are missing are the system's own.
    explicit LintoraApplicationDelegate(PanelFactory panel, LintoraModel::Surroundings surroundings = {});
    ~LintoraApplicationDelegate() override;

    LintoraModel &model() { return *m_model; }
    FloatingWindow *window() const { return m_window.get(); } ///< Null until it is shown first; then for good.
    QMenuBar *menuBar() const { return m_menuBar; }

    /// Builds the menus, and shows the window.
    void applicationDidFinishLaunching();

    /// Hands files and links to the model one by one, then shows the window, once.
    void open(const QList<QUrl> &urls);

    void applicationWillTerminate();

    /// Shows the window, which it makes when there is none, in front of all others and with the keyboard.
    void showWindow();

    // Menu commands
    void openSRT();
    void openVersions();
    void openFCP();
    void openSpeech();
    void openScriptMatch();
    void openReview();
    void openStyle();
    void openCleanup();
    void openAISettings();
    void openFindReplace(); ///< Does nothing while a job owns the cues.
    void openTranslation();
    void openKeys();

    /// Holds back the end of the program while it would lose work, and asks.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isEnd(const QObject *watched, const QEvent &event) const;
    void buildMenus();
    void addTidying(QMenu &application);
    void addView(QMenu &application);
    void addExports(QMenu &application);
    QMenu *addCueMenu(QMenu &application, const QString &title);
    bool keepTyped();
    QList<WindowState::MenuKey> menuKeys() const;
    void followRecent(QMenu &menu);
    QAction *addCommand(QMenu &menu, const QString &title, void (LintoraApplicationDelegate::*command)(),
                        const QKeySequence &key = {});
    void applyPinned();
    void raisePinnedWindow();
    void applicationStateChanged(Qt::ApplicationState state);
    void applicationDidResignActive();

    const PanelFactory m_panel;
    const CompositionGuard m_compositionGuard;
    const std::unique_ptr<Platform::PasteboardTypes> m_pasteboardTypes;
    const std::unique_ptr<LintoraModel> m_model;
    QPointer<QMenuBar> m_menuBar; ///< The window's, where menus end with it.
    std::unique_ptr<FloatingWindow> m_window;
    bool m_isActive = false;
    bool m_mayEnd = false; ///< Whether the person has said so, whatever is lost.
};
