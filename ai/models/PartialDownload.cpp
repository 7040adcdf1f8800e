#include "ai/models/PartialDownload.h"

#include "ai/models/LocalModels.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds syncInterval = std::chrono::seconds(5);
constexpr qint64 largestRecord = 65'536; // bytes

struct Record
{
    QString url;
    QString validator;
};

Record readRecord(const QString &path)
{
    Record record;
    try {
        const auto bytes = FileReader::readUpTo(path, largestRecord);
        JsonReader json(bytes ? QByteArrayView(*bytes) : QByteArrayView());
        json.readObject({"url", "validator"}, [&](QByteArrayView key) {
            if (key == "url")
                record.url = json.readText();
            else if (key == "validator")
                record.validator = json.readText();
        });
    } catch (const PlatformError &) {
        // Without a record the bytes count all the same: the digest of the whole decides.
        return {};
    }
    return record;
}

} // namespace

PartialDownload::PartialDownload(const LocalModel &model)
    : m_file(QDir(LocalModels::directory()).filePath(u".partial-"_s + model.sha256))
{
    // Whoever finished a download between our opening and our locking has moved the file away from under us.
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        open();
        if (isStillInPlace())
            break;
        m_file.close();
    }
    if (!m_file.isOpen())
        throw ConversionError(u"此模型正在下载，请等待完成后再试。"_s);
    m_size = m_file.size();
    m_file.seek(m_size);
    m_sinceSync.start();
}

void PartialDownload::open()
{
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        throw PlatformError(m_file.errorString());
    if (flock(m_file.handle(), LOCK_EX | LOCK_NB) != 0) {
        m_file.close();
        throw ConversionError(u"此模型正在下载，请等待完成后再试。"_s);
    }
}

bool PartialDownload::isStillInPlace() const
{
    struct stat opened
    {};
    struct stat named
    {};
    return fstat(m_file.handle(), &opened) == 0 && stat(QFile::encodeName(path()).constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

QByteArray PartialDownload::validator(const QUrl &url) const
{
    const Record record = readRecord(recordPath());
    return record.url == url.toString() ? record.validator.toLatin1() : QByteArray();
}

void PartialDownload::startOver(const QUrl &url, const QByteArray &validator)
{
    clear();
    AtomicFile record(recordPath());
    record.write(jsonBytes([&](JsonWriter &json) {
        json.beginObject();
        json.key("url").text(url.toString());
        json.key("validator").text(QString::fromLatin1(validator));
        json.endObject();
    }));
    record.commit();
}

void PartialDownload::append(QByteArrayView bytes)
{
    if (m_file.write(bytes.data(), bytes.size()) != bytes.size())
        throw PlatformError(m_file.errorString());
    m_size += bytes.size();
    if (m_sinceSync.hasExpired(syncInterval.count()))
        sync();
}

void PartialDownload::sync()
{
    if (fsync(m_file.handle()) != 0 && errno != EINVAL && errno != ENOTSUP)
        throw PlatformError(qt_error_string(errno));
    m_sinceSync.start();
}

void PartialDownload::clear()
{
    // The record goes first: bytes must never stand under the name of another version.
    removeRecord();
    if (!m_file.resize(0) || !m_file.seek(0))
        throw PlatformError(m_file.errorString());
    m_size = 0;
}

void PartialDownload::removeRecord()
{
    QFile::remove(recordPath());
}

QList<PartialDownload::Kept> PartialDownload::all()
{
    static const QRegularExpression form(u"^\\.partial-([0-9a-f]{64})$"_s);
    QList<Kept> result;
    const QFileInfoList files =
        QDir(LocalModels::directory()).entryInfoList({u".partial-*"_s}, QDir::Files | QDir::Hidden, QDir::Name);
    for (const QFileInfo &file : files) {
        if (const auto match = form.match(file.fileName()); match.hasMatch())
            result.append({.path = file.filePath(), .sha256 = match.captured(1), .bytes = file.size()});
    }
    return result;
}

void PartialDownload::remove(const Kept &kept)
{
    LocalModel model;
    model.sha256 = kept.sha256;
    PartialDownload partial(model);
    partial.removeRecord();
    if (!partial.m_file.remove())
        throw PlatformError(partial.m_file.errorString());
}
