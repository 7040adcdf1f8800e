#include "app/Lintora/ai/WorkerTexts.h"

#include "ai/models/LocalModels.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace WorkerTexts {

QString status(const LocalModel &model)
{
    const QString line = model.statusLabel();
    return line.contains(model.sizeLabel()) ? line : line + u" · "_s + model.sizeLabel();
}

QString leaving(const QString &what, const QString &address)
{
    const QString host = QUrl(address.trimmed()).host();
    return host.isEmpty() ? u"尚未设置服务地址。"_s : u"%1会发送到 %2。"_s.arg(what, host);
}

QString textWorker(const AIChoices &choices)
{
    if (choices.aiUseOnline)
        return leaving(u"字幕文字"_s, choices.aiAPIBaseURL);
    const LocalModel &model = LocalModels::translation();
    return choices.aiTextModelFile.isEmpty() ? u"在本机处理 · %1 · %2"_s.arg(model.title, status(model))
                                             : u"在本机处理 · "_s + QFileInfo(choices.aiTextModelFile).fileName();
}

} // namespace WorkerTexts
