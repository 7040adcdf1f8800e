#include "store/RecordLog.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/DiskSync.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QtEndian>

#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView logHeader("LINTORA STEPS 1\n");
constexpr qsizetype lengthBytes = 4;
constexpr qsizetype checkBytes = 8;

QByteArray checkOf(QByteArrayView before, QByteArrayView content)
{
    QCryptographicHash hash(QCryptographicHash::Blake2b_256);
    hash.addData(before);
    hash.addData(content);
    return hash.result().first(checkBytes);
}

} // namespace

RecordLog::RecordLog(const QString &path)
    : m_file(path)
    , m_lock(path + u".lock"_s)
{}

QList<QByteArray> RecordLog::open()
{
    m_file.close();
    const QFileInfo file(m_file.fileName());
    // Opening what is no regular file, a pipe for instance, might wait forever.
    if (!file.isFile() || !takeLock())
        return {};
    AtomicFile::removeLeftovers(m_file.fileName());
    const std::optional<QByteArray> bytes = FileReader::readUpTo(m_file.fileName(), sizeLimit);
    if (!bytes || !bytes->startsWith(logHeader))
        return {};
    QList<QByteArray> records;
    qsizetype at = logHeader.size();
    m_check = logHeader.toByteArray();
    while (bytes->size() - at > lengthBytes + checkBytes) {
        const qsizetype length = qFromLittleEndian<quint32>(bytes->constData() + at);
        const QByteArrayView check = QByteArrayView(*bytes).sliced(at + lengthBytes, checkBytes);
        const qsizetype content = at + lengthBytes + checkBytes;
        if (length == 0 || length > bytes->size() - content)
            break;
        const QByteArray record = bytes->sliced(content, length);
        if (checkOf(m_check, record) != check)
            break;
        records += record;
        m_check = check.toByteArray();
        at = content + length;
    }
    m_size = at;
    reopen();
    if (at < bytes->size() && !m_file.resize(at))
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
    return records;
}

bool RecordLog::begin(const QList<QByteArray> &records)
{
    Folder::make(QFileInfo(m_file.fileName()).path());
    if (!takeLock())
        return false;
    m_file.close();
    m_check = logHeader.toByteArray();
    const QByteArray bytes = logHeader.toByteArray() + framed(records);
    AtomicFile file(m_file.fileName());
    file.write(bytes);
    file.commit(AtomicFile::Durability::powerCut);
    m_size = bytes.size();
    reopen();
    return true;
}

void RecordLog::append(const QList<QByteArray> &records)
{
    const QByteArray bytes = framed(records);
    if (m_file.write(bytes) != bytes.size())
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
    m_size += bytes.size();
}

void RecordLog::sync()
{
    DiskSync::descriptor(m_file.handle(), m_file.fileName());
}

void RecordLog::discard()
{
    m_file.close();
    if (m_lock.isOpen() && m_file.exists() && !m_file.remove())
        QFile::resize(m_file.fileName(), 0);
}

bool RecordLog::takeLock()
{
    if (m_lock.isOpen())
        return true;
    // Opening what is no regular file, a pipe for instance, might wait forever.
    const QFileInfo file(m_lock.fileName());
    if ((file.exists() && !file.isFile()) || !m_lock.open(QIODevice::ReadWrite))
        return false;
    if (flock(m_lock.handle(), LOCK_EX | LOCK_NB) != 0)
        m_lock.close();
    return m_lock.isOpen();
}

void RecordLog::reopen()
{
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered))
        throw PlatformError::aboutFile(m_file.fileName(), m_file.errorString());
}

/// The records as they stand in the file behind the last one.
QByteArray RecordLog::framed(const QList<QByteArray> &records)
{
    QByteArray bytes;
    for (const QByteArray &record : records) {
        char length[lengthBytes];
        qToLittleEndian(quint32(record.size()), length);
        m_check = checkOf(m_check, record);
        bytes.append(length, lengthBytes).append(m_check).append(record);
    }
    return bytes;
}
