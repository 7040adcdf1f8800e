#pragma once

#include <QStringList>

/// Audio and video, by the names of files. What a file really holds, the helper that reads it tells.
namespace MediaFiles {

/// The extensions of what speech is recognised in: lower case, without the dot.
const QStringList &extensions();

/// By the file name's extension, in any case.
bool isMedia(const QString &path);

} // namespace MediaFiles
