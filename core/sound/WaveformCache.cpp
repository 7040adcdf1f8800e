#include "core/sound/WaveformCache.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView form = "Lintora waveform 1\n";
constexpr qint64 largestEntry = 32 * 1024 * 1024; ///< Bytes: fifteen hours.

QByteArray digestOf(const WaveformCache::Key &key, QByteArrayView bytes)
{
    QCryptographicHash hash(QCryptographicHash::Blake2b_256);
    hash.addData(key.path.toUtf8() + '\0' + QByteArray::number(key.size) + '\0' + QByteArray::number(key.modifiedMS) +
                 '\0');
    hash.addData(bytes);
    return hash.result();
}

} // namespace

std::optional<WaveformCache::Key> WaveformCache::Key::of(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return std::nullopt;
    return Key{
        .path = file.canonicalFilePath(), .size = file.size(), .modifiedMS = file.lastModified().toMSecsSinceEpoch()};
}

WaveformCache::WaveformCache(QString folder, qint64 largestSize)
    : m_folder(std::move(folder))
    , m_largest(largestSize)
{}

QString WaveformCache::file(const Key &key) const
{
    constexpr qsizetype length = 32; // hexadecimal digits
    const QByteArray name = digestOf({.path = key.path}, {}).toHex().first(length);
    return m_folder + u'/' + QString::fromLatin1(name) + u".waveform"_s;
}

std::optional<Waveform> WaveformCache::find(const Key &key) const
{
    std::optional<QByteArray> entry;
    try {
        entry = FileReader::readUpTo(file(key), largestEntry);
    } catch (const PlatformError &) {
        return std::nullopt; // is read again
    }
    const qsizetype head = form.size() + QCryptographicHash::hashLength(QCryptographicHash::Blake2b_256);
    if (!entry || entry->size() < head || !entry->startsWith(form))
        return std::nullopt;
    const QByteArrayView bytes = QByteArrayView(*entry).sliced(head);
    if (QByteArrayView(*entry).first(head).sliced(form.size()) != digestOf(key, bytes))
        return std::nullopt;
    QFile looked(file(key));
    if (looked.open(QIODevice::ReadWrite))
        looked.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    return Waveform::fromBytes(bytes);
}

void WaveformCache::keep(const Key &key, const Waveform &waveform) const
{
    const QByteArray bytes = waveform.toBytes();
    if (bytes.size() + form.size() > largestEntry)
        return;
    const bool isNew = !QFileInfo::exists(m_folder);
    Folder::make(m_folder);
    if (isNew)
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    AtomicFile entry(file(key));
    entry.write(form);
    entry.write(digestOf(key, bytes));
    entry.write(bytes);
    entry.commit();
    bound();
}

/// What writers have left unfinished is counted too.
void WaveformCache::bound() const
{
    const QFileInfoList entries =
        QDir(m_folder).entryInfoList({u"*.waveform*"_s}, QDir::Files | QDir::Hidden, QDir::Time);
    qint64 total = 0;
    for (const QFileInfo &entry : entries) {
        total += entry.size();
        if (total > m_largest)
            QFile::remove(entry.filePath());
    }
}
