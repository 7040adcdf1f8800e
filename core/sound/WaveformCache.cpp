#include "core/sound/WaveformCache.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/Folder.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView form = "Lintora waveform 2\n";
constexpr auto digestMethod = QCryptographicHash::Blake2b_256;
constexpr qint64 largestEntry = 32 * 1024 * 1024; ///< Bytes: fifteen hours.

QByteArray bytesOf(const WaveformCache::Key &key)
{
    return key.name.toUtf8() + '\0' + key.state + '\0';
}

} // namespace

std::optional<WaveformCache::Key> WaveformCache::Key::of(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return std::nullopt;
    return Key{.name = file.canonicalFilePath(),
               .state =
                   QByteArray::number(file.size()) + ' ' + QByteArray::number(file.lastModified().toMSecsSinceEpoch())};
}

WaveformCache::WaveformCache(QString folder, qint64 largestSize)
    : m_folder(std::move(folder))
    , m_largest(largestSize)
{}

QString WaveformCache::file(const Key &key) const
{
    constexpr qsizetype length = 32; // hexadecimal digits
    const QByteArray name = QCryptographicHash::hash(bytesOf({.name = key.name}), digestMethod).toHex().first(length);
    return m_folder + u'/' + QString::fromLatin1(name) + u".waveform"_s;
}

std::optional<Waveform> WaveformCache::find(const Key &key) const
{
    QFile entry(file(key));
    const qint64 head = form.size() + QCryptographicHash::hashLength(digestMethod);
    if (!QFileInfo(entry).isFile() || !entry.open(QIODevice::ReadOnly) || entry.size() < head ||
        entry.size() > largestEntry || entry.read(form.size()) != form)
        return std::nullopt; // is read again
    const QByteArray digest = entry.read(head - form.size());
    QCryptographicHash hash(digestMethod);
    hash.addData(bytesOf(key));
    auto waveform = Waveform::read(entry.size() - head, [&](std::span<char> bytes) {
        if (entry.read(bytes.data(), qint64(bytes.size())) != qint64(bytes.size()))
            return false;
        hash.addData(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        return true;
    });
    if (!waveform || hash.result() != digest)
        return std::nullopt;
    QFile looked(entry.fileName());
    if (looked.open(QIODevice::ReadWrite))
        looked.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    return waveform;
}

void WaveformCache::keep(const Key &key, const Waveform &waveform) const
{
    if (waveform.byteCount() + form.size() + QCryptographicHash::hashLength(digestMethod) > largestEntry)
        return;
    const bool isNew = !QFileInfo::exists(m_folder);
    Folder::make(m_folder);
    if (isNew)
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCryptographicHash hash(digestMethod);
    hash.addData(bytesOf(key));
    waveform.write([&](QByteArrayView bytes) { hash.addData(bytes); });
    AtomicFile entry(file(key));
    entry.write(form);
    entry.write(hash.result());
    waveform.write([&](QByteArrayView bytes) { entry.write(bytes); });
    entry.commit();
    bound();
}

void WaveformCache::keepWhereItMay(const Key &key, const Waveform &waveform) const
{
    try {
        keep(key, waveform);
    } catch (const PlatformError &) { // NOLINT(bugprone-empty-catch)
        // The next time finds nothing, as if it had never been kept.
    }
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
