#include "app/window/LintoraApplicationDelegate.h"

#include "app/fonts/FontCatalogue.h"
#include "app/model/FCPPasteboard.h"
#include "app/window/SystemFileDialogs.h"

#include <QApplication>
#include <QFileOpenEvent>
#include <QSettings>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logger, "FloatingWindow")

/// As the system's own log formats it.
QStringView text(bool value)
{
    return value ? u"true" : u"false";
}

LintoraModel::Surroundings completed(LintoraModel::Surroundings surroundings, std::function<QWidget *()> window)
{
    surroundings.font = FontCatalogue::defaultFamily();
    if (!surroundings.settings)
        surroundings.settings = Platform::settings();
    if (!surroundings.dialogs.open)
        surroundings.dialogs = systemFileDialogs(std::move(window));
    return surroundings;
}

} // namespace

LintoraApplicationDelegate::LintoraApplicationDelegate(PanelFactory panel, LintoraModel::Surroundings surroundings)
    : m_panel(std::move(panel))
    , m_pasteboardTypes(Platform::translatePasteboardTypes(FCPPasteboard::fcpTypes()))
    , m_model(std::make_unique<LintoraModel>(completed(std::move(surroundings), [this] { return m_window.get(); })))
{
    m_isActive = QGuiApplication::applicationState() == Qt::ApplicationActive;
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::aboutToQuit, this, &LintoraApplicationDelegate::applicationWillTerminate);
    connect(qApp, &QApplication::applicationStateChanged, this, &LintoraApplicationDelegate::applicationStateChanged);
}

LintoraApplicationDelegate::~LintoraApplicationDelegate()
{
    if (!m_window)
        delete m_menuBar;
}

void LintoraApplicationDelegate::applicationDidFinishLaunching()
{
    // On Linux the program ends with its window, for nothing else would be left to bring it back by.
    QApplication::setQuitOnLastWindowClosed(!Platform::programOutlivesWindow());
    buildMenus();
    m_model->window().raisePinnedWindow = [delegate = QPointer(this)] {
        if (delegate)
            delegate->raisePinnedWindow();
    };
    connect(m_model.get(), &LintoraModel::quitConfirmed, this, [this] {
        m_mayEnd = true;
        QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
    });
    connect(&m_model->window(), &WindowState::pinnedChanged, this, &LintoraApplicationDelegate::applyPinned);
    showWindow();
    m_model->removeLeftovers();
}

void LintoraApplicationDelegate::open(const QList<QUrl> &urls)
{
    for (const QUrl &url : urls)
        m_model->receiveURL(url);
    showWindow();
}

void LintoraApplicationDelegate::applicationWillTerminate()
{
    m_model->shutdownAI();
    m_model->saveDraft();
}

void LintoraApplicationDelegate::showWindow()
{
    if (!m_window) {
        QMenuBar *const inWindow = Platform::programOutlivesWindow() ? nullptr : m_menuBar;
        m_window = std::make_unique<FloatingWindow>(m_panel(*m_model), m_model->preferences(), inWindow);
    }
    applyPinned();
    m_window->showInFront();
}

void LintoraApplicationDelegate::applyPinned()
{
    if (m_window)
        m_window->setPinned(m_model->window().pinned());
}

void LintoraApplicationDelegate::raisePinnedWindow()
{
    // While a card is on its way, the window must not come between it and the timeline.
    if (!m_model->window().pinned() || m_model->window().subtitleDragInProgress || !m_window ||
        Platform::isApplicationHidden())
        return;
    m_window->raiseQuietly();
}

void LintoraApplicationDelegate::applicationStateChanged(Qt::ApplicationState state)
{
    const bool isActive = state == Qt::ApplicationActive;
    if (m_isActive && !isActive)
        applicationDidResignActive();
    m_isActive = isActive;
    // The system makes a program active, perhaps once more, when its icon is clicked.
    if (isActive && m_window && !m_window->isVisible())
        showWindow();
}

void LintoraApplicationDelegate::applicationDidResignActive()
{
    if (!m_window || !m_window->windowHandle())
        return;
    const Platform::Standing standing = Platform::standing(*m_window->windowHandle());
    Platform::log(logger(), u"Resigned active: visible=%1 hidesOnDeactivate=%2 level=%3"_s.arg(text(standing.visible))
                                .arg(text(standing.hidesOnDeactivate))
                                .arg(standing.level));
}

bool LintoraApplicationDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (isEnd(watched, *event) && !m_mayEnd && !m_model->requestQuit()) {
        event->ignore();
        showWindow();
        return true;
    }
    if (event->type() != QEvent::FileOpen)
        return QObject::eventFilter(watched, event);
    const auto &request = static_cast<const QFileOpenEvent &>(*event);
    const QUrl url = request.url().isValid() ? request.url() : QUrl(request.file());
    m_model->receiveURL(url);
    // Several files come as an event each: the window is shown after the last.
    QMetaObject::invokeMethod(this, &LintoraApplicationDelegate::showWindow, Qt::QueuedConnection);
    return true;
}

bool LintoraApplicationDelegate::isEnd(const QObject *watched, const QEvent &event) const
{
    const bool closes = event.type() == QEvent::Close && m_window && watched == m_window.get();
    return (event.type() == QEvent::Quit && watched == qApp) || (closes && !Platform::programOutlivesWindow());
}

void LintoraApplicationDelegate::buildMenus()
{
    m_menuBar = new QMenuBar;
    // Where the system has a menu of the program's own, its entries move there by their roles.
    QMenu *const application = m_menuBar->addMenu(u"VELMORA 字幕助手"_s);
    addCommand(*application, u"打开 SRT…"_s, &LintoraApplicationDelegate::openSRT, Qt::CTRL | Qt::Key_O);
    addCommand(*application, u"从 FCP 导入…"_s, &LintoraApplicationDelegate::openFCP);
    addCommand(*application, u"从音视频生成字幕…"_s, &LintoraApplicationDelegate::openSpeech,
               Qt::CTRL | Qt::SHIFT | Qt::Key_O);
    QMenu *const recent = application->addMenu(u"最近的字幕"_s);
    recent->menuAction()->setMenuRole(QAction::ApplicationSpecificRole);
    connect(m_model.get(), &LintoraModel::recentSessionsChanged, recent, [this, recent] { followRecent(*recent); });
    followRecent(*recent);
    addCommand(*application, u"文稿匹配…"_s, &LintoraApplicationDelegate::openScriptMatch);
    addCommand(*application, u"AI 校对…"_s, &LintoraApplicationDelegate::openReview);
    addCommand(*application, u"字幕样式…"_s, &LintoraApplicationDelegate::openStyle, Qt::CTRL | Qt::Key_Comma);
    addCommand(*application, u"清理设置…"_s, &LintoraApplicationDelegate::openCleanup);
    addCommand(*application, u"AI 设置…"_s, &LintoraApplicationDelegate::openAISettings);
    application->addSeparator();
    QAction *const quit = application->addAction(u"退出 VELMORA 字幕助手"_s);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, qApp, &QApplication::quit, Qt::QueuedConnection);

    auto *const edit = new EditMenu(*m_model, m_menuBar);
    m_menuBar->addMenu(edit);
    edit->addSeparator();
    QAction *const find =
        addCommand(*edit, u"查找与替换…"_s, &LintoraApplicationDelegate::openFindReplace, Qt::CTRL | Qt::Key_F);
    find->setMenuRole(QAction::NoRole);
    const auto enableFind = [this, find] { find->setEnabled(!m_model->aiBusy()); };
    connect(m_model.get(), &LintoraModel::aiBusyChanged, find, enableFind);
    enableFind();
}

void LintoraApplicationDelegate::followRecent(QMenu &menu)
{
    menu.clear();
    for (const RecentSessions::Entry &entry : m_model->recentSessions()) {
        QString title = u"%1   %2"_s.arg(entry.title, entry.kept.toString(u"M月d日 HH:mm"_s));
        menu.addAction(title.replace(u'&', u"&&"_s), this, [this, file = entry.file] {
            showWindow();
            m_model->openRecent(file);
        });
    }
    menu.setEnabled(!menu.isEmpty());
}

QAction *LintoraApplicationDelegate::addCommand(QMenu &menu, const QString &title,
                                                void (LintoraApplicationDelegate::*command)(), const QKeySequence &key)
{
    QAction *const action = menu.addAction(title);
    action->setShortcut(key);
    action->setMenuRole(QAction::ApplicationSpecificRole);
    connect(action, &QAction::triggered, this, [this, command] {
        // What they open is shown in the window, which may have been closed.
        if (m_window && !m_window->isVisible())
            showWindow();
        (this->*command)();
    });
    return action;
}

void LintoraApplicationDelegate::openSRT()
{
    m_model->choose();
}

void LintoraApplicationDelegate::openFCP()
{
    m_model->showFCPImport();
}

void LintoraApplicationDelegate::openSpeech()
{
    m_model->showAI(WindowState::AIMode::speech);
}

void LintoraApplicationDelegate::openScriptMatch()
{
    m_model->showScriptMatch();
}

void LintoraApplicationDelegate::openReview()
{
    m_model->showAI(WindowState::AIMode::review);
}

void LintoraApplicationDelegate::openStyle()
{
    m_model->window().setSettingsVisible(true);
}

void LintoraApplicationDelegate::openAISettings()
{
    m_model->showAISettings();
}

void LintoraApplicationDelegate::openCleanup()
{
    m_model->window().setCleanupSettingsVisible(true);
}

void LintoraApplicationDelegate::openFindReplace()
{
    if (!m_model->aiBusy())
        m_model->window().setFindReplaceVisible(true);
}
