#include "ai/models/LocalModel.h"

#include "ai/models/LocalModels.h"
#include "core/ByteCount.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

QUrl LocalModel::url(const QUrl &host) const
{
    QUrl url = host;
    QString path = url.path();
    if (!path.endsWith(u'/'))
        path += u'/';
    url.setPath(path + repository + u"/resolve/"_s + revision + u'/' + filename);
    return url;
}

QString LocalModel::file() const
{
    return QDir(LocalModels::directory()).filePath(filename);
}

bool LocalModel::ready() const
{
    const QFileInfo info(file());
    return info.isFile() && info.size() == bytes;
}

QString LocalModel::sizeLabel() const
{
    return ByteCount::text(bytes);
}

QString LocalModel::statusLabel() const
{
    if (!QFileInfo::exists(file()))
        return u"尚未下载 · "_s + sizeLabel();
    if (!ready())
        return u"文件不完整 · 请重新下载"_s;
    return LocalModels::isVerified(file(), *this) ? u"已校验 · 可离线使用"_s : u"已下载 · 使用前校验"_s;
}
