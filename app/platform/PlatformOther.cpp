#include "app/platform/Platform.h"

#include <QDir>
#include <QFontDatabase>
#include <QSettings>
#include <QWindow>

#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace Platform {

namespace {

constexpr qint64 normalLevel = 0;
constexpr qint64 floatingLevel = 3;

} // namespace

Standing standing(const QWindow &window)
{
    const bool floats = window.flags().testFlag(Qt::WindowStaysOnTopHint);
    return {.visible = window.isVisible(), .hidesOnDeactivate = false, .level = floats ? floatingLevel : normalLevel};
}

void setFloating(QWindow &window, bool floating)
{
    window.create();
    // On the window instead of the widget, whose setter hides the window and makes it anew.
    if (window.flags().testFlag(Qt::WindowStaysOnTopHint) != floating)
        window.setFlag(Qt::WindowStaysOnTopHint, floating);
}

void raise(QWindow &window)
{
    window.raise();
}

void activate(QWindow &window)
{
    window.raise();
    window.requestActivate();
}

bool isApplicationHidden()
{
    return false; // programs cannot be hidden here, only their windows
}

void acceptDrops(QWindow & /*window*/, const QStringList & /*types*/)
{
    // Drops of every type are announced here.
}

std::unique_ptr<PasteboardTypes> translatePasteboardTypes(const QStringList & /*types*/)
{
    return std::make_unique<PasteboardTypes>(); // types travel as they are
}

bool programOutlivesWindow()
{
    return false;
}

bool systemRunsProgramOnce()
{
    return false;
}

bool belongsToUser(qintptr descriptor)
{
    ucred credentials = {};
    socklen_t size = sizeof credentials;
    const auto socket = static_cast<int>(descriptor);
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 && credentials.uid == getuid();
}

QString interfaceFamily()
{
    const QString family = u"Noto Sans CJK SC"_s;
    return QFontDatabase::hasFamily(family) ? family : QString();
}

QString widgetStyle()
{
    return u"fusion"_s;
}

bool offersAppearance()
{
    return false; // some desktops do, and none in a way that all programs hear of
}

std::unique_ptr<QSettings> settings()
{
    return std::make_unique<QSettings>(QDir::homePath() + u"/Library/Preferences/local.lintora.workflow.ini"_s,
                                       QSettings::IniFormat);
}

void chooseMediaFramework()
{
    // The other one shows no picture where there is no audio device.
    constexpr auto variable = "QT_MEDIA_BACKEND";
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, "gstreamer");
}

void log(const QLoggingCategory &category, const QString &line)
{
    qCInfo(category).noquote() << line;
}

} // namespace Platform
