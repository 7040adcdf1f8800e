#include "app/platform/Platform.h"

#include <QSettings>
#include <QUtiMimeConverter>
#include <QVariant>
#include <QWindow>

#import <AppKit/AppKit.h>

#include <unistd.h>

// Compiled without automatic reference counting: nothing here keeps an object of the system's.

namespace Platform {

namespace {

constexpr NSWindowCollectionBehavior floatingBehaviour =
    NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
constexpr NSWindowCollectionBehavior normalBehaviour =
    NSWindowCollectionBehaviorManaged | NSWindowCollectionBehaviorFullScreenAuxiliary;
static_assert(floatingBehaviour == 257 && normalBehaviour == 260);

NSView *nativeView(const QWindow &window)
{
    return reinterpret_cast<NSView *>(window.winId());
}

NSWindow *nativeWindow(const QWindow &window)
{
    return [nativeView(window) window];
}

NSString *nativeText(const QString &text)
{
    return [NSString stringWithUTF8String:text.toUtf8().constData()];
}

/// Types that keep their names and bytes on the way. Without it they would leave under names of Qt's own making.
class SameNames : public QUtiMimeConverter
{
public:
    explicit SameNames(const QStringList &types)
        : m_types(types)
    {}

    QString utiForMime(const QString &mime) const override { return m_types.contains(mime) ? mime : QString(); }

    QString mimeForUti(const QString &uti) const override { return m_types.contains(uti) ? uti : QString(); }

    QList<QByteArray> convertFromMime(const QString &, const QVariant &data, const QString &) const override
    {
        return {data.toByteArray()};
    }

    QVariant convertToMime(const QString &, const QList<QByteArray> &data, const QString &) const override
    {
        return data.isEmpty() ? QVariant() : QVariant(data.constFirst());
    }

private:
    const QStringList m_types;
};

class Translation : public PasteboardTypes
{
public:
    explicit Translation(const QStringList &types)
        : m_converter(types)
    {}

private:
    const SameNames m_converter; ///< Known to Qt from its construction to its end.
};

} // namespace

Standing standing(const QWindow &window)
{
    NSWindow *const native = nativeWindow(window);
    return {.visible = static_cast<bool>([native isVisible]),
            .hidesOnDeactivate = static_cast<bool>([native hidesOnDeactivate]),
            .level = static_cast<qint64>([native level])};
}

void setFloating(QWindow &window, bool floating)
{
    NSWindow *const native = nativeWindow(window);
    [native setHidesOnDeactivate:NO];
    [native setLevel:floating ? NSFloatingWindowLevel : NSNormalWindowLevel];
    [native setCollectionBehavior:floating ? floatingBehaviour : normalBehaviour];
}

void raise(QWindow &window)
{
    [nativeWindow(window) orderFrontRegardless];
}

void activate(QWindow &window)
{
    [nativeWindow(window) makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

bool isApplicationHidden()
{
    return static_cast<bool>([NSApp isHidden]);
}

void acceptDrops(QWindow &window, const QStringList &types)
{
    @autoreleasepool {
        NSView *const view = nativeView(window);
        // All together with what Qt has registered, for a registration may take the place of the one before.
        NSMutableArray *const all = [NSMutableArray arrayWithArray:[view registeredDraggedTypes]];
        for (const QString &type : types) {
            if (![all containsObject:nativeText(type)])
                [all addObject:nativeText(type)];
        }
        [view registerForDraggedTypes:all];
    }
}

std::unique_ptr<PasteboardTypes> translatePasteboardTypes(const QStringList &types)
{
    return std::make_unique<Translation>(types);
}

bool programOutlivesWindow()
{
    return true;
}

bool systemRunsProgramOnce()
{
    return true;
}

bool belongsToUser(qintptr descriptor)
{
    uid_t user = 0;
    gid_t group = 0;
    return getpeereid(static_cast<int>(descriptor), &user, &group) == 0 && user == getuid();
}

QString interfaceFamily()
{
    return {};
}

QString widgetStyle()
{
    return {};
}

bool offersAppearance()
{
    return true;
}

std::unique_ptr<QSettings> settings()
{
    // Without an organisation and an application the domain is the bundle's identifier, as it is for the standard user
    // defaults.
    auto settings = std::make_unique<QSettings>(QString(), QString());
    settings->setFallbacksEnabled(false);
    return settings;
}

void chooseMediaFramework()
{
    // The system's own is the one that there is.
}

void log(const QLoggingCategory &category, const QString &line)
{
    // Qt hands warnings to the unified log at its default level, and notes at one that is not kept. The subsystem is
    // the bundle's identifier.
    qCWarning(category).noquote() << line;
}

} // namespace Platform
