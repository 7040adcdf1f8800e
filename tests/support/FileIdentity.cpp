#include "tests/support/FileIdentity.h"

#include <QFile>

#include <sys/stat.h>

namespace FileIdentity {

quint64 of(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace FileIdentity
