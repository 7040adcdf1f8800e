#include "ai/models/LocalModels.h"

#include "ai/models/FileDigest.h"
#include "core/ByteCount.h"
#include "core/ConversionError.h"
#include "core/Job.h"
#include "core/PlatformError.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QScopeGuard>
#include <QStorageInfo>
#include <QUuid>

#include <cstdio>
#include <mutex>

using namespace Qt::StringLiterals;

namespace LocalModels {

namespace {

/// What files have passed their check, by their full path.
class VerificationCache
{
public:
    void store(const QString &file, const QString &signature)
    {
        const std::lock_guard lock(m_mutex);
        m_signatures.insert(key(file), signature);
    }
    bool holds(const QString &file, const QString &signature)
    {
        const std::lock_guard lock(m_mutex);
        return m_signatures.value(key(file)) == signature;
    }

private:
    static QString key(const QString &file) { return QFileInfo(file).absoluteFilePath(); }

    std::mutex m_mutex; ///< Guards what follows.
    QHash<QString, QString> m_signatures;
};

VerificationCache &cache()
{
    static VerificationCache instance;
    return instance;
}

/// Changes whenever the file or the catalog does; absent when the file cannot be seen.
std::optional<QString> signature(const QString &file, const LocalModel &model)
{
    const QFileInfo info(file);
    if (!info.isFile())
        return std::nullopt;
    constexpr double millisecondsInSecond = 1000;
    const double modified = double(info.lastModified().toMSecsSinceEpoch()) / millisecondsInSecond;
    return u"%1:%2:%3"_s.arg(model.sha256).arg(info.size()).arg(QString::number(modified, 'f', 3));
}

LocalModel speechRow(const QString &id, const QString &title, const QString &filename, qint64 bytes,
                     const QString &sha256, const QString &summary)
{
    return {.id = id,
            .title = title,
            .filename = filename,
            .revision = u"5359861c739e955e79d9a303bcbc70fb988958b1"_s,
            .repository = u"ggerganov/whisper.cpp"_s,
            .sha256 = sha256,
            .bytes = bytes,
            .summary = summary};
}

} // namespace

const QList<LocalModel> &speechModels()
{
    static const QList<LocalModel> models = {
        speechRow(u"base"_s, u"Whisper Base · 轻量"_s, u"ggml-base.bin"_s, 147'951'465,
                  u"60ed5bc3dd14eea856493d334349b405782ddcaf0028d4b5df4088345fba2efe"_s,
                  u"多语言 · 低内存，复杂人声建议使用较大模型"_s),
        speechRow(u"small"_s, u"Whisper Small · 均衡"_s, u"ggml-small-q5_1.bin"_s, 190'085'487,
                  u"ae85e4a935d7a567bd102fe55afc16bb595bdb618e11b2fc7591bc08120411bb"_s,
                  u"多语言 · 适合轻量剪辑任务"_s),
        speechRow(u"medium"_s, u"Whisper Medium · 完整解码"_s, u"ggml-medium-q5_0.bin"_s, 539'212'467,
                  u"19fea4b380c3a618ec4723c3eef2eb785ffba0d0538cf43f8f235e7b3b34220f"_s,
                  u"多语言 · 比 Turbo 更慢，结果需按素材对比"_s),
        speechRow(u"speech"_s, u"Whisper Turbo · 推荐"_s, u"ggml-large-v3-turbo-q5_0.bin"_s, 574'041'195,
                  u"394221709cd5ad1f40c46e6031ca61bce88931e6e088c188294c6d5a55ffa7e2"_s,
                  u"多语言 · 兼顾速度与识别效果"_s),
        speechRow(u"large-v3"_s, u"Whisper Large v3 · 高资源"_s, u"ggml-large-v3-q5_0.bin"_s, 1'081'140'203,
                  u"d75795ecff3f83b5faa89d1900604ad8c780abd5739fae406de19f23ecd98ad1"_s,
                  u"多语言 · 完整大模型，耗时和内存较高"_s),
    };
    return models;
}

QList<LocalModel> catalog()
{
    return speechModels() + QList{translation()};
}

const LocalModel &speech()
{
    return speechModel(u"speech"_s);
}

const LocalModel &speechModel(const QString &id)
{
    const QList<LocalModel> &models = speechModels();
    const auto called = [&](const QString &name) {
        return std::ranges::find_if(models, [&](const LocalModel &model) { return model.id == name; });
    };
    const auto found = called(id);
    return found != models.end() ? *found : *called(u"speech"_s);
}

const LocalModel &translation()
{
    static const LocalModel model{
        .id = u"translation"_s,
        .title = u"Qwen3 4B · Q4"_s,
        .filename = u"Qwen3-4B-Q4_K_M.gguf"_s,
        .revision = u"bc640142c66e1fdd12af0bd68f40445458f3869b"_s,
        .repository = u"Qwen/Qwen3-4B-GGUF"_s,
        .sha256 = u"7485fe6f11af29433bc51cab58009521f205840f5b4ae3a32fa7f92e8534fdf5"_s,
        .bytes = 2'497'280'256,
        .summary = {},
    };
    return model;
}

QList<QUrl> defaultHosts()
{
    return {QUrl(u"https://huggingface.co/"_s)};
}

std::optional<QUrl> host(const QString &typed)
{
    const QUrl url(typed.trimmed(), QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    const bool isPlain = url.userInfo().isEmpty() && !url.hasQuery() && !url.hasFragment();
    return url.isValid() && isWeb && isPlain && !url.host().isEmpty() ? std::optional(url) : std::nullopt;
}

QString directory()
{
    const QString named = qEnvironmentVariable("VELMORA_SUBTITLE_MODELS");
    return named.isEmpty() ? QDir::home().filePath(u"Library/Application Support/VELMORA Subtitle/Models"_s) : named;
}

std::optional<qint64> availableSpace(const QString &path)
{
    QString existing = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    while (!QFileInfo::exists(existing) && existing != u"/")
        existing = QFileInfo(existing).path();
    const QStorageInfo storage(existing);
    return storage.isValid() && storage.bytesAvailable() >= 0 ? std::optional(storage.bytesAvailable()) : std::nullopt;
}

void checkDownloadSpace(const LocalModel &model, std::optional<qint64> available)
{
    if (!available)
        throw ConversionError(u"无法读取可用磁盘空间，请检查模型文件夹。"_s);
    constexpr qint64 reserve = 67'108'864; // bytes
    const qint64 required = 2 * model.bytes + reserve;
    if (*available < required)
        throw ConversionError(u"磁盘空间不足。下载并校验此模型需要至少 "_s + ByteCount::text(required) +
                              u" 可用空间。"_s);
}

void verify(const QString &file, const LocalModel &model, Job *job)
{
    if (job != nullptr)
        job->check();
    const QFileInfo info(file);
    if (!info.isFile() || info.size() != model.bytes)
        throw ConversionError(u"模型下载不完整，请重新下载。"_s);
    const auto before = signature(file, model);
    if (FileDigest::sha256(file, job) != model.sha256.toLatin1())
        throw ConversionError(u"模型校验未通过，请重新下载。"_s);
    // A file that changed under the reading is not what was read.
    if (const auto after = signature(file, model); after && after == before)
        cache().store(file, *after);
}

bool isVerified(const QString &file, const LocalModel &model)
{
    const auto current = signature(file, model);
    return current && cache().holds(file, *current);
}

void installDownload(const QString &temporaryFile, const LocalModel &model, Job &job)
{
    verify(temporaryFile, model, &job);
    const QString copy =
        QDir(directory()).filePath(u".download-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    const auto remove = qScopeGuard([&] { QFile::remove(copy); });
    QFile source(temporaryFile);
    if (!source.copy(copy))
        throw PlatformError(source.errorString());
    job.check();
    moveIntoPlace(copy, model);
}

void moveIntoPlace(const QString &file, const LocalModel &model)
{
    const QString place = model.file();
    if (std::rename(QFile::encodeName(file).constData(), QFile::encodeName(place).constData()) != 0)
        throw ConversionError(u"无法保存模型，原模型已保留。请检查文件夹权限。"_s);
    if (const auto installed = signature(place, model))
        cache().store(place, *installed);
}

} // namespace LocalModels
