#include "core/AtomicFile.h"

#include "core/PlatformError.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

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
        throw PlatformError(m_file->errorString());
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(QByteArrayView bytes)
{
    if (m_file->write(bytes.data(), bytes.size()) != bytes.size())
        throw PlatformError(m_file->errorString());
}

void AtomicFile::commit()
{
    if (auto *const replacement = qobject_cast<QSaveFile *>(m_file.get())) {
        if (!replacement->commit())
            throw PlatformError(replacement->errorString());
        return;
    }
    if (!m_file->flush())
        throw PlatformError(m_file->errorString());
    m_file->close();
}
