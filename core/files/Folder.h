#pragma once

#include <QString>

/// Folders that files are written into.
namespace Folder {

/// Makes the folder at `path` and those above it, as far as they are missing.
/// @throws PlatformError naming the folder and why it cannot be made
void make(const QString &path);

} // namespace Folder
