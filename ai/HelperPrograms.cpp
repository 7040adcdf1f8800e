#include "ai/HelperPrograms.h"

#include "core/ConversionError.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace LocalModels {

namespace {

/// The folders that may hold the helpers, most wanted first, seen from the program's own.
QStringList folders()
{
    const QString named = qEnvironmentVariable("VELMORA_SUBTITLE_HELPERS");
    if (!named.isEmpty())
        return {named};
    const QDir own(QCoreApplication::applicationDirPath());
    QStringList result;
    for (const QString &way : {u"../Resources/AI"_s,    // in the application's bundle
                               u"../lib/lintora/AI"_s,  // installed
                               u"../../AI"_s,           // build/release/cli beside build/AI
                               u"../../../../../AI"_s}) // build/release/app/lintora.app/Contents/MacOS
        result.append(QDir::cleanPath(own.filePath(way)));
    result.append(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/lintora/AI"_s);
    return result;
}

} // namespace

QString helper(const QString &name)
{
    const QStringList candidates = folders();
    for (const QString &folder : candidates) {
        const QFileInfo file(QDir(folder).filePath(name));
        if (file.isFile() && file.isExecutable())
            return file.absoluteFilePath();
    }
    throw ConversionError(u"本地引擎不完整，请重新安装字幕助手。"_s, QDir(candidates.first()).filePath(name));
}

} // namespace LocalModels
