#include "ai/speech/KeptAnswers.h"

#include "ai/AnswerLedger.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "local.lintora.workflow.ai")

} // namespace

KeptAnswers::KeptAnswers(QString folder)
    : m_folder(std::move(folder))
{
    dropOld();
}

QString KeptAnswers::defaultFolder()
{
    return QDir(AnswerLedger::defaultFolder()).filePath(u"Speech"_s);
}

void KeptAnswers::clear(const QString &folder)
{
    const QFileInfoList files = QDir(folder).entryInfoList({u"*.json"_s}, QDir::Files);
    for (const QFileInfo &file : files)
        QFile::remove(file.filePath());
}

std::optional<QByteArray> KeptAnswers::answer(const QByteArray &key) const
{
    if (!QFileInfo::exists(path(key)))
        return std::nullopt;
    try {
        return FileReader::readAll(path(key));
    } catch (const PlatformError &) {
        return std::nullopt; // It is asked for again.
    }
}

void KeptAnswers::keep(const QByteArray &key, const QByteArray &answer) const
{
    try {
        QDir().mkpath(m_folder);
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        AtomicFile file(path(key));
        file.write(answer);
        file.commit();
    } catch (const PlatformError &error) {
        qCWarning(log) << "an answer is not kept:" << error.what();
    }
}

void KeptAnswers::drop(const QByteArray &key) const
{
    QFile::remove(path(key));
}

QString KeptAnswers::path(const QByteArray &key) const
{
    return QDir(m_folder).filePath(QString::fromLatin1(key) + u".json"_s);
}

void KeptAnswers::dropOld() const
{
    constexpr int oldest = 7; // days
    const QDateTime limit = QDateTime::currentDateTime().addDays(-oldest);
    const QFileInfoList files = QDir(m_folder).entryInfoList({u"*.json"_s}, QDir::Files);
    for (const QFileInfo &file : files) {
        if (file.lastModified() < limit)
            QFile::remove(file.filePath());
    }
}
