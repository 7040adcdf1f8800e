#include "ai/Workspace.h"

#include "core/PlatformError.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QUuid>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

const QString prefix = u"VELMORA-Subtitle-"_s;

/// When something was last written in a folder or to one of its files.
QDateTime lastWrite(const QFileInfo &folder)
{
    QDateTime newest = folder.lastModified();
    const QFileInfoList files =
        QDir(folder.filePath()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &file : files)
        newest = std::max(newest, file.lastModified());
    return newest;
}

} // namespace

Workspace::Workspace()
    : m_path(QDir::tempPath() + u'/' + prefix + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    QDir().mkpath(QDir::tempPath());
    if (mkdir(QFile::encodeName(m_path).constData(), 0700) != 0)
        throw PlatformError(qt_error_string(errno));
}

Workspace::~Workspace()
{
    QDir(m_path).removeRecursively();
}

QString Workspace::file(const QString &name) const
{
    return m_path + u'/' + name;
}

void Workspace::removeLeftovers()
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(prefix + u"[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}"_s));
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-1);
    const QFileInfoList folders =
        QDir(QDir::tempPath()).entryInfoList({prefix + u'*'}, QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QFileInfo &folder : folders) {
        if (folder.ownerId() == geteuid() && form.match(folder.fileName()).hasMatch() && lastWrite(folder) < oldest)
            QDir(folder.filePath()).removeRecursively();
    }
}
