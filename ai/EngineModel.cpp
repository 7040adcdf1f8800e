#include "ai/EngineModel.h"

#include "ai/LocalAIJob.h"
#include "ai/models/LocalModels.h"
#include "core/ConversionError.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

EngineModel EngineModel::own(const QString &path)
{
    const QFileInfo file(path);
    const QString absolute = file.absoluteFilePath();
    const QString identity = u"%1:%2:%3"_s.arg(absolute).arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
    const auto prepare = [absolute](LocalAIJob &, const ProgressReport &) {
        QFile model(absolute);
        if (!model.open(QIODevice::ReadOnly) || model.size() == 0)
            throw ConversionError(u"无法读取模型文件。"_s, u"%1：%2"_s.arg(absolute, model.errorString()));
    };
    return {.file = absolute, .identity = identity.toUtf8(), .prepare = prepare};
}

EngineModel EngineModel::ofCatalog(const LocalModel &model, const QString &missing, const QString &checking)
{
    const auto prepare = [=](LocalAIJob &job, const ProgressReport &progress) {
        if (!model.ready())
            throw ConversionError(missing, model.title);
        if (LocalModels::isVerified(model.file(), model))
            return;
        progress({.what = checking});
        LocalModels::verify(model.file(), model, &job);
    };
    return {.file = model.file(), .identity = model.sha256.toLatin1(), .prepare = prepare};
}
