#pragma once

#include "app/fonts/FontFamily.h"

#include <QByteArrayView>
#include <QList>

/// What was found out about the installed fonts, kept between runs: reading a thousand fonts takes seconds.
namespace FontIndexFile {

/// The families kept in the file at `path`. None when there is no such file, or none that this version wrote whole:
/// what cannot be read is found out again.
QList<FontFamily> load(const QString &path);

/// Replaces the file at `path`, making its folder. @throws PlatformError
void save(const QString &path, const QList<FontFamily> &families);

/// As load, from the bytes of a file. @throws PlatformError when they are no index.
QList<FontFamily> decode(QByteArrayView bytes);

QByteArray encode(const QList<FontFamily> &families);

} // namespace FontIndexFile
