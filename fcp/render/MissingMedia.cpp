#include "fcp/render/MissingMedia.h"

#include "core/ConversionError.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;

namespace MissingMedia {

QStringList find(const FCPAudioPlan &plan)
{
    QStringList missing;
    QSet<QString> seen;
    for (const FCPAudioSegment &segment : plan.segments) {
        const QString path = segment.url.toLocalFile();
        if (seen.contains(path))
            continue;
        seen.insert(path);
        const QFileInfo file(path);
        if (!file.isFile() || !file.isReadable())
            missing.append(path);
    }
    return missing;
}

void refuse(const FCPAudioPlan &plan)
{
    const QStringList missing = find(plan);
    if (missing.isEmpty())
        return;
    const QString first = QDir::toNativeSeparators(missing.first());
    const QString detail = missing.size() == 1 ? u"缺少文件：%1"_s.arg(first)
                                               : u"缺少 %1 个文件，第一个是：%2"_s.arg(missing.size()).arg(first);
    throw ConversionError(u"找不到片段原始音视频，请先在 FCP 重新连接媒体。"_s, detail);
}

FCPAudioPlan leaveOut(FCPAudioPlan plan)
{
    const QStringList list = find(plan);
    const QSet<QString> missing(list.begin(), list.end());
    plan.segments.removeIf([&](const FCPAudioSegment &segment) { return missing.contains(segment.url.toLocalFile()); });
    if (plan.segments.isEmpty())
        throw NothingAudible(u"所选 FCP 内容没有可读取的音轨。"_s);
    return plan;
}

} // namespace MissingMedia
