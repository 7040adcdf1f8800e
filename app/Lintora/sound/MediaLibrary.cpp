#include "app/Lintora/sound/MediaLibrary.h"

#include "core/ConversionError.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

#include <utility>

using namespace Qt::StringLiterals;

namespace MediaLibrary {

namespace {

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

} // namespace

std::unique_ptr<MediaDevice> makeDevice(MediaDevice::Listener listener)
{
    QString reason;
    for (const QString &place : places()) {
        QLibrary library(place);
        if (auto *const make = reinterpret_cast<MediaDeviceMaker *>(library.resolve("lintoraMediaDevice")))
            return std::unique_ptr<MediaDevice>(make(std::move(listener)));
        reason = library.errorString();
    }
    throw ConversionError(u"无法播放：缺少播放组件，请重新安装字幕助手。其他功能不受影响。"_s, reason);
}

} // namespace MediaLibrary
