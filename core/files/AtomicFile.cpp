#include "core/files/AtomicFile.h"

#include "core/PlatformError.h"
#include "core/files/DiskSync.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

bool isReplaceable(const QString &path)
{
    const QFileInfo target(path);
    return !target.exists() || target.isFile() || target.isDir();
}

} // namespace

AtomicFile::AtomicFile(const QString &path)
{
    if (isReplaceable(path))
        m_file = std::make_unique<QSaveFile>(path);
    else
        m_file = std::make_unique<QFile>(path);
    if (!m_file->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw PlatformError::aboutFile(m_file->fileName(), m_file->errorString());
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(QByteArrayView bytes)
{
    // What finds the disk full in its middle is written in part, without an error: the rest of it brings the reason.
    while (!bytes.isEmpty()) {
        const qint64 written = m_file->write(bytes.data(), bytes.size());
        if (written <= 0)
            throw PlatformError::aboutFile(m_file->fileName(), m_file->errorString());
        bytes = bytes.sliced(written);
    }
}

void AtomicFile::sync()
{
    // The replacement syncs its content too, but keeps to itself when that fails.
    if (qobject_cast<QSaveFile *>(m_file.get()) != nullptr)
        DiskSync::descriptor(m_file->handle(), m_file->fileName());
}

QByteArray AtomicFile::readBack(const Check &check) const
{
    // The name of the file beside the target is not told, but it is open for reading too.
    const int descriptor = m_file->handle();
    struct stat status
    {};
    if (fstat(descriptor, &status) != 0)
        throw PlatformError::aboutFile(m_file->fileName(), qt_error_string(errno));
    QByteArray bytes(status.st_size, Qt::Uninitialized);
    constexpr qsizetype largestPiece = 1024 * 1024;
    for (qsizetype done = 0; done < bytes.size();) {
        if (check)
            check();
        const qsizetype piece = std::min(largestPiece, bytes.size() - done);
        const ssize_t read = pread(descriptor, bytes.data() + done, size_t(piece), off_t(done));
        if (read < 0 && errno == EINTR)
            continue;
        if (read < 0)
            throw PlatformError::aboutFile(m_file->fileName(), qt_error_string(errno));
        if (read == 0)
            bytes.truncate(done);
        done += read;
    }
    return bytes;
}

void AtomicFile::commit(Durability durability)
{
    auto *const replacement = qobject_cast<QSaveFile *>(m_file.get());
    if (replacement == nullptr) {
        if (!m_file->flush())
            throw PlatformError::aboutFile(m_file->fileName(), m_file->errorString());
        m_file->close();
        return;
    }
    if (durability == Durability::powerCut)
        sync();
    if (!replacement->commit())
        throw PlatformError::aboutFile(replacement->fileName(), replacement->errorString());
    if (durability == Durability::powerCut)
        DiskSync::folder(QFileInfo(QFileInfo(replacement->fileName()).canonicalFilePath()).path());
}

void AtomicFile::removeLeftovers(const QString &path)
{
    const QFileInfo target(path);
    // QSaveFile writes to the target's name with six random letters behind it. Only what mixes small letters and
    // capitals is taken for one: "Draft.json.backup" and "Draft.json.Backup" are somebody's.
    const QRegularExpression form(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(target.fileName()) + u"\\.(?=[A-Za-z]*[a-z])(?=[A-Za-z]+[A-Z])[A-Za-z]{6}"_s));
    constexpr int age = 10 * 60; // seconds; whoever writes now is done long before
    const QDateTime oldest = QDateTime::currentDateTime().addSecs(-age);
    const QFileInfoList files = QDir(target.path()).entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &file : files) {
        if (file.lastModified() < oldest && form.match(file.fileName()).hasMatch())
            QFile::remove(file.filePath());
    }
}
