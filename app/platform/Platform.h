#pragma once

#include <QLoggingCategory>
#include <QString>
#include <QStringList>

#include <memory>

class QSettings;
class QWindow;

/// What one window system does differently from the others. Everything here is for the main thread.
namespace Platform {

/// How a window stands towards the windows of other programs.
struct Standing
{
    bool visible = false;
    bool hidesOnDeactivate = false; ///< Whether it goes when another program becomes active.
    qint64 level = 0;               ///< 0 among ordinary windows, 3 above them.

    friend bool operator==(const Standing &, const Standing &) = default;
};

Standing standing(const QWindow &window);

/// Keeps `window` above the windows of other programs, in every space and beside full-screen windows, or lets it stand
/// among them. It stays visible in either state when another program becomes active.
///
/// Lost whenever the window system makes the window anew or its flags are set: to be called again then. Makes the
/// native window if there is none yet.
void setFloating(QWindow &window, bool floating);

/// Puts `window` in front of all others, and leaves the active program active.
void raise(QWindow &window);

/// Makes this program the active one and `window` its key window.
void activate(QWindow &window);

/// Whether the user has hidden the whole program.
bool isApplicationHidden();

/// Lets documents of foreign pasteboard types be dropped onto `window`. Lost with the native window, like setFloating.
void acceptDrops(QWindow &window, const QStringList &types);

/// Carries data between the program's own pasteboards and those of the system for as long as it lives.
class PasteboardTypes
{
public:
    PasteboardTypes() = default;
    virtual ~PasteboardTypes() = default;
    Q_DISABLE_COPY_MOVE(PasteboardTypes)
};

/// Makes data that is offered under one of `types` reach other programs under just this type, with the same bytes, and
/// theirs reach us. To be called once the application object exists.
std::unique_ptr<PasteboardTypes> translatePasteboardTypes(const QStringList &types);

/// Whether menus and the program itself stay when the window is closed. Elsewhere the menu bar is the window's, and the
/// program ends with it.
bool programOutlivesWindow();

/// Whether the system starts the program only once, and hands the running one files and links as events.
bool systemRunsProgramOnce();

/// Whether the process at the other end of the local socket `descriptor` belongs to the user who runs this one.
bool belongsToUser(qintptr descriptor);

/// The font family that the interface is set in; empty where the system's own font has Chinese glyphs that go with its
/// Latin ones. Needs the application object.
QString interfaceFamily();

/// The name of the style that widgets are drawn in; empty: the system's own.
QString widgetStyle();

/// Whether the system lets people choose between light and dark, for all programs.
bool offersAppearance();

/// The user's settings. Sees no keys but its own.
std::unique_ptr<QSettings> settings();

/// Chooses what media are played by, where there is a choice and the user has not made it. Before there are threads.
void chooseMediaFramework();

/// Logs what is worth a line in the system's log even when nobody looks for errors. Every word of it can be read by
/// others: no text of the user's.
void log(const QLoggingCategory &category, const QString &line);

} // namespace Platform
