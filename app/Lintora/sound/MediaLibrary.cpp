#include "app/Lintora/sound/MediaLibrary.h"

#include "core/ConversionError.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QThreadPool>

#include <mutex>
#include <utility>

using namespace Qt::StringLiterals;

namespace MediaLibrary {

namespace {

std::mutex beginning; ///< Held by who loads the library and starts the framework.

/// Where it may lie, seen from the program's folder.
QStringList places()
{
    const QDir own(QCoreApplication::applicationDirPath());
    QStringList result;
    for (const QString &way : {u"../PlugIns"_s,     // in the application's bundle
                               u"../lib/lintora"_s, // installed
                               u"."_s,              // built
                               u"../app"_s,         // built, for the tests
                               u"../../app"_s})
        result.append(QDir::cleanPath(own.filePath(way + u"/liblintora_playback"_s)));
    return result;
}

/// What the library offers under `name`. @throws ConversionError when it is not there or cannot be loaded
QFunctionPointer found(const char *name)
{
    QString reason;
    for (const QString &place : places()) {
        QLibrary library(place);
        if (const QFunctionPointer function = library.resolve(name))
            return function;
        reason = library.errorString();
    }
    throw ConversionError(u"无法播放：缺少播放组件，请重新安装字幕助手。其他功能不受影响。"_s, reason);
}

} // namespace

void prepare()
{
    QThreadPool::globalInstance()->start([] {
        const std::lock_guard lock(beginning);
        try {
            reinterpret_cast<MediaFrameworkStarter *>(found("lintoraStartMediaFramework"))();
        } catch (const ConversionError &) { // NOLINT(bugprone-empty-catch)
            // It is said when something is to be played.
        }
    });
}

std::unique_ptr<MediaDevice> makeDevice(MediaDevice::Listener listener)
{
    const std::lock_guard lock(beginning);
    auto *const make = reinterpret_cast<MediaDeviceMaker *>(found("lintoraMediaDevice"));
    return std::unique_ptr<MediaDevice>(make(std::move(listener)));
}

} // namespace MediaLibrary
