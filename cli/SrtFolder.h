#pragma once

#include "core/Subtitle.h"

#include <QDir>
#include <QString>

#include <functional>
#include <vector>

/// Several SRT files in one folder, written all or none.
namespace SrtFolder {

struct File
{
    QString name; ///< Without a folder.
    QList<Subtitle> items;
};

/// A file's name for a track of this label: what no file system takes is replaced.
QString fileName(const QString &label);

/// No file is replaced before all are written and `beforeCommit` has done its part. The folder is made where it does
/// not exist. @throws PlatformError, Cancelled
void write(const QDir &folder, const std::vector<File> &files, const std::function<void()> &beforeCommit);

} // namespace SrtFolder
