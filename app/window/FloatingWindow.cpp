#include "app/window/FloatingWindow.h"

#include "app/model/FCPPasteboard.h"
#include "app/platform/Platform.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(640, 790);
constexpr QSize leastSize(560, 650);

} // namespace

FloatingWindow::FloatingWindow(QWidget *panel, Preferences &preferences, QMenuBar *menuBar)
    : m_preferences(preferences)
{
    setWindowTitle(u"VELMORA 字幕助手"_s);
    setCentralWidget(panel);
    if (menuBar)
        setMenuBar(menuBar);
    // Of the content: a menu bar inside the window comes on top of it.
    panel->setMinimumSize(leastSize);
    setContextMenuPolicy(Qt::NoContextMenu);
    m_frameChanged.setSingleShot(true);
    m_frameChanged.setInterval(500); // milliseconds; a frame is written once it rests
    connect(&m_frameChanged, &QTimer::timeout, this, &FloatingWindow::rememberFrame);
    restoreFrame();
}

FloatingWindow::~FloatingWindow()
{
    if (m_frameChanged.isActive())
        rememberFrame();
}

void FloatingWindow::restoreFrame()
{
    const QRect room = screen()->availableGeometry();
    const int menuHeight = menuWidget() ? menuWidget()->sizeHint().height() : 0;
    const QSize usual = (usualSize + QSize(0, menuHeight)).boundedTo(room.size());
    if (!restoreGeometry(m_preferences.windowFrame()))
        setGeometry(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, usual, room));
    // Once, for those who come from a version that showed less. Who makes the window smaller afterwards, keeps it so.
    if (!m_preferences.expandedActionsLayout()) {
        resize(size().expandedTo(usual));
        m_preferences.setExpandedActionsLayout(true);
    }
}

void FloatingWindow::rememberFrame()
{
    m_frameChanged.stop();
    m_preferences.setWindowFrame(saveGeometry());
}

void FloatingWindow::setPinned(bool pinned)
{
    m_pinned = pinned;
    applyStanding();
}

void FloatingWindow::applyStanding()
{
    if (!testAttribute(Qt::WA_WState_Created) || !windowHandle())
        return;
    Platform::setFloating(*windowHandle(), m_pinned);
    Platform::acceptDrops(*windowHandle(), FCPPasteboard::fcpTypes());
}

void FloatingWindow::showInFront()
{
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    Platform::activate(*windowHandle());
}

void FloatingWindow::raiseQuietly()
{
    if (!isVisible() || isMinimized())
        return;
    applyStanding();
    Platform::raise(*windowHandle());
}

bool FloatingWindow::event(QEvent *event)
{
    const bool handled = QMainWindow::event(event);
    switch (event->type()) {
    case QEvent::WinIdChange:       // the native window was made, perhaps anew
    case QEvent::WindowStateChange: // full screen sets levels of its own
    case QEvent::Show:              // flags have been set
        applyStanding();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (isVisible())
            m_frameChanged.start();
        break;
    default:
        break;
    }
    return handled;
}

void FloatingWindow::closeEvent(QCloseEvent *event)
{
    rememberFrame();
    event->accept();
}
