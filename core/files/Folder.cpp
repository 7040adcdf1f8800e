#include "core/files/Folder.h"

#include "core/PlatformError.h"

#include <QFile>

#include <filesystem>

using namespace Qt::StringLiterals;

void Folder::make(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (error)
        throw PlatformError(u"无法创建文件夹“%1”：%2"_s.arg(path, qt_error_string(error.value())));
}
