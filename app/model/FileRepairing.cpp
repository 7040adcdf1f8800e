#include "app/model/FileRepairing.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

void FileRepairing::offer(const QString &path)
{
    if (std::exchange(m_offered, path) != path)
        Q_EMIT offeredChanged();
}

void FileRepairing::show(const QString &path)
{
    m_path = path;
    m_file.reset();
    read({});
    Q_EMIT shownChanged();
}

void FileRepairing::close()
{
    if (std::exchange(m_path, {}).isEmpty())
        return;
    m_task.cancel();
    m_file.reset();
    Q_EMIT shownChanged();
}

void FileRepairing::setEncoding(const QString &name)
{
    if (isShown() && !(m_file && m_file->encoding == name))
        read(name);
}

void FileRepairing::read(const QString &encoding)
{
    m_task.run(
        u"正在检查文件…"_s,
        [path = m_path, encoding](Job &job, const ProgressReport & /*report*/) {
            return Imports::readRepaired(path, encoding, job);
        },
        [this](const RepairedFile &file) {
            m_file = file;
            setStatus(u"%1 条字幕，修复 %2 处"_s.arg(file.items.size()).arg(file.repairs.size()));
        },
        [this](const Failure &failure) {
            m_file.reset();
            setStatus(failure.sentence, true);
        },
        [this] { setStatus(u"已取消"_s); });
    setStatus(u"正在检查文件…"_s);
}

void FileRepairing::accept()
{
    if (!m_file || m_task.isRunning())
        return;
    const Imports::ImportedCues cues{.cues = m_file->items, .source = QFileInfo(m_path).fileName(), .file = m_path};
    const qsizetype repairs = m_file->repairs.size();
    close();
    withdraw();
    Q_EMIT accepted(cues, repairs);
}

void FileRepairing::setStatus(const QString &status, bool isRefused)
{
    m_status = status;
    m_isRefused = isRefused;
    Q_EMIT fileChanged();
}
