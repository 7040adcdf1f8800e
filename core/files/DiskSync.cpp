#include "core/files/DiskSync.h"

#include "core/PlatformError.h"

#include <QFile>
#include <QScopeGuard>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace DiskSync {

void descriptor(int descriptor, const QString &path)
{
#ifdef F_FULLFSYNC
    // Here fsync leaves the data in the disk's own cache.
    if (fcntl(descriptor, F_FULLFSYNC) == 0)
        return;
#endif
    if (fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP)
        throw PlatformError::aboutFile(path, qt_error_string(errno));
}

void folder(const QString &path)
{
    const int opened = open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0)
        return;
    const auto close = qScopeGuard([=] { ::close(opened); });
    descriptor(opened, path);
}

} // namespace DiskSync
