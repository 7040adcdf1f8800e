#pragma once

#include <QString>

/// Brings what was written to the disk, so that it outlives a power cut. Where the file system has no such thing,
/// nothing can be done.
namespace DiskSync {

/// The content of an open file or folder. @throws PlatformError naming `path`
void descriptor(int descriptor, const QString &path);

/// The names in a folder. One that we may write to but not read cannot be opened for that, and is left.
/// @throws PlatformError naming the folder
void folder(const QString &path);

} // namespace DiskSync
