#include "app/window/LintoraApplicationDelegate.h"

#include "app/fonts/FontCatalogue.h"
#include "app/model/FCPPasteboard.h"
#include "app/window/PlayMenu.h"
#include "app/window/SystemFileDialogs.h"

#include <QActionGroup>
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
    m_model->window().menuKeys = [delegate = QPointer(this)] {
        return delegate ? delegate->menuKeys() : QList<WindowState::MenuKey>();
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
    connect(m_model.get(), &LintoraModel::recentWorkChanged, recent, [this, recent] { followRecent(*recent); });
    followRecent(*recent);
    addCommand(*application, u"历史版本…"_s, &LintoraApplicationDelegate::openVersions,
               Qt::CTRL | Qt::SHIFT | Qt::Key_H);
    addExports(*application);
    addCommand(*application, u"翻译…"_s, &LintoraApplicationDelegate::openTranslation);
    addCommand(*application, u"AI 校对…"_s, &LintoraApplicationDelegate::openReview);
    addCommand(*application, u"文稿匹配…"_s, &LintoraApplicationDelegate::openScriptMatch);
    addTidying(*application);
    addCommand(*application, u"字幕样式…"_s, &LintoraApplicationDelegate::openStyle, Qt::CTRL | Qt::Key_Comma);
    addCommand(*application, u"清理设置…"_s, &LintoraApplicationDelegate::openCleanup);
    addCommand(*application, u"AI 设置…"_s, &LintoraApplicationDelegate::openAISettings);
    addView(*application);
    addCommand(*application, u"键盘操作"_s, &LintoraApplicationDelegate::openKeys, Qt::CTRL | Qt::Key_Slash);
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
    m_menuBar->addMenu(new PlayMenu(*m_model, m_menuBar));
}

/// A menu of what is done to the cues, while there are some.
QMenu *LintoraApplicationDelegate::addCueMenu(QMenu &application, const QString &title)
{
    QMenu *const menu = application.addMenu(title);
    menu->menuAction()->setMenuRole(QAction::ApplicationSpecificRole);
    const auto enable = [this, menu] { menu->setEnabled(!m_model->items().isEmpty()); };
    connect(m_model.get(), &LintoraModel::itemsChanged, menu, enable);
    enable();
    return menu;
}

void LintoraApplicationDelegate::addTidying(QMenu &application)
{
    QMenu *const menu = addCueMenu(application, u"整理"_s);
    const auto add = [this, menu](const QString &title, CueTools::Tool tool) {
        connect(menu->addAction(title), &QAction::triggered, this, [this, tool] {
            if (keepTyped())
                m_model->cueTools().open(tool);
        });
    };
    add(u"断句…"_s, CueTools::Tool::breaking);
    add(u"检查…"_s, CueTools::Tool::checking);
    add(u"繁简转换…"_s, CueTools::Tool::script);
}

/// What the window shows, and in which colours where the system has nobody choose these.
void LintoraApplicationDelegate::addView(QMenu &application)
{
    WindowState &window = m_model->window();
    QAction *const inspector = application.addAction(u"画面预览"_s);
    inspector->setMenuRole(QAction::ApplicationSpecificRole);
    inspector->setShortcut(Qt::CTRL | Qt::Key_I);
    inspector->setCheckable(true);
    inspector->setChecked(window.inspectorShown());
    connect(inspector, &QAction::triggered, &window, &WindowState::setInspectorShown);
    connect(&window, &WindowState::inspectorShownChanged, inspector,
            [&window, inspector] { inspector->setChecked(window.inspectorShown()); });
    if (Platform::offersAppearance())
        return;
    QMenu *const menu = application.addMenu(u"外观"_s);
    auto *const choices = new QActionGroup(menu);
    const auto add = [&](const QString &title, WindowState::Appearance appearance) {
        QAction *const choice = choices->addAction(menu->addAction(title));
        choice->setCheckable(true);
        choice->setChecked(window.appearance() == appearance);
        connect(choice, &QAction::triggered, &window, [&window, appearance] { window.setAppearance(appearance); });
    };
    add(u"跟随系统"_s, WindowState::Appearance::system);
    add(u"浅色"_s, WindowState::Appearance::light);
    add(u"深色"_s, WindowState::Appearance::dark);
}

void LintoraApplicationDelegate::addExports(QMenu &application)
{
    QMenu *const menu = addCueMenu(application, u"导出"_s);
    const auto add = [this, menu](const QString &title, const QKeySequence &key, void (LintoraModel::*action)()) {
        QAction *const entry = menu->addAction(title);
        entry->setShortcut(key);
        connect(entry, &QAction::triggered, this, [this, action] {
            if (keepTyped())
                (m_model.get()->*action)();
        });
    };
    add(u"导出 SRT…"_s, Qt::CTRL | Qt::Key_E, &LintoraModel::exportSRT);
    add(u"导出全部 SRT…"_s, {}, &LintoraModel::exportAllSRT);
    add(u"导出 FCPXML…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_E, &LintoraModel::exportFCPXML);
    add(u"写入项目…"_s, {}, &LintoraModel::exportToProject);
    add(u"写回项目标题…"_s, {}, &LintoraModel::showTitleWriting);
}

/// Brings what is being typed into the cues, so that it goes along. False when it was refused.
bool LintoraApplicationDelegate::keepTyped()
{
    if (m_window && !m_window->isVisible())
        showWindow();
    const auto &keep = m_model->window().keepTyped;
    return !keep || keep();
}

QList<WindowState::MenuKey> LintoraApplicationDelegate::menuKeys() const
{
    QList<WindowState::MenuKey> keys;
    const std::function<void(const QMenu &, const QString &)> collect = [&](const QMenu &menu, const QString &title) {
        for (const QAction *const action : menu.actions()) {
            if (action->menu())
                collect(*action->menu(), title);
            else if (!action->shortcut().isEmpty())
                keys += {.menu = title,
                         .title = action->text(),
                         .keys = action->shortcut().toString(QKeySequence::NativeText)};
        }
    };
    for (const QAction *const top : m_menuBar->actions())
        collect(*top->menu(), top->text());
    return keys;
}

void LintoraApplicationDelegate::followRecent(QMenu &menu)
{
    menu.clear();
    for (const RecentWork::Entry &entry : m_model->recentWork()) {
        QString title =
            u"%1   %2 · %3"_s.arg(entry.title, RecentWork::nameOf(entry.kind), entry.kept.toString(u"M月d日 HH:mm"_s));
        menu.addAction(title.replace(u'&', u"&&"_s), this, [this, entry] {
            showWindow();
            m_model->openRecent(entry);
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

void LintoraApplicationDelegate::openVersions()
{
    if (keepTyped())
        m_model->versions().show();
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

void LintoraApplicationDelegate::openTranslation()
{
    m_model->showAI(WindowState::AIMode::translation);
}

void LintoraApplicationDelegate::openKeys()
{
    m_model->window().setKeysVisible(true);
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
