#include "tests/support/HelperFolder.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

HelperFolder::HelperFolder()
    : m_formerTemporary(qgetenv("TMPDIR"))
{
    qputenv("VELMORA_SUBTITLE_HELPERS", QFile::encodeName(m_folder.path()));
    QDir(m_folder.path()).mkdir(u"tmp"_s);
    qputenv("TMPDIR", QFile::encodeName(file(u"tmp"_s)));
}

HelperFolder::~HelperFolder()
{
    qunsetenv("VELMORA_SUBTITLE_HELPERS");
    if (m_formerTemporary.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", m_formerTemporary);
}

void HelperFolder::script(const QString &name, const QStringList &lines)
{
    QFile::remove(file(name));
    QFile::link(QStringLiteral(LINTORA_SCRIPTED_HELPER), file(name));
    QFile script(file(name + u".script"_s));
    if (script.open(QIODevice::WriteOnly))
        script.write(lines.join(u'\n').toUtf8());
}

QString HelperFolder::file(const QString &name) const
{
    return m_folder.filePath(name);
}

QList<QStringList> HelperFolder::runs(const QString &name) const
{
    QList<QStringList> result;
    const QStringList runs =
        QString::fromUtf8(contentOf(file(name + u".arguments"_s))).split(u"\n\n"_s, Qt::SkipEmptyParts);
    for (const QString &run : runs)
        result.append(run.split(u'\n'));
    return result;
}

QList<QByteArray> HelperFolder::requests(const QString &name) const
{
    QList<QByteArray> bodies = contentOf(file(name + u".requests"_s)).split('\n');
    bodies.removeLast();
    return bodies;
}

QList<int> HelperFolder::processes() const
{
    QList<int> result;
    for (const QByteArray &line : contentOf(file(u"processes"_s)).split('\n')) {
        if (!line.isEmpty())
            result.append(line.toInt());
    }
    return result;
}

int HelperFolder::running() const
{
    int count = 0;
    for (const int process : processes())
        count += kill(process, 0) == 0 ? 1 : 0;
    return count;
}

bool HelperFolder::waitForProcesses(int count) const
{
    for (int round = 0; round < 2'000 && processes().size() < count; ++round)
        QThread::msleep(10);
    return processes().size() >= count;
}

QStringList HelperFolder::scratchFolders() const
{
    return QDir(file(u"tmp"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}
