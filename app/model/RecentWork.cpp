#include "app/model/RecentWork.h"

#include "app/model/Imports.h"
#include "core/PlatformError.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

RecentWork::Kind kindFor(Imports::Kind kind)
{
    switch (kind) {
    case Imports::Kind::subtitles:
        return RecentWork::Kind::subtitles;
    case Imports::Kind::project:
        return RecentWork::Kind::project;
    case Imports::Kind::media:
        break;
    }
    return RecentWork::Kind::media;
}

} // namespace

RecentWork::RecentWork(const QString &folder)
    : m_sessions(folder)
    , m_files(folder + u"/Files.json"_s)
{}

QList<RecentWork::Entry> RecentWork::list() const
{
    QList<Entry> entries;
    for (const RecentSessions::Entry &each : m_sessions.list())
        entries += {.kind = Kind::session, .file = each.file, .title = each.title, .kept = each.kept};
    for (const RecentFiles::Entry &each : m_files.list()) {
        if (const auto kind = Imports::kindOf(each.path))
            entries += {.kind = kindFor(*kind),
                        .file = each.path,
                        .title = QFileInfo(each.path).fileName(),
                        .kept = each.opened};
    }
    std::ranges::stable_sort(entries, std::ranges::greater(), &Entry::kept);
    return entries;
}

void RecentWork::keep(const LintoraSession &session, const QString &title) const
{
    m_sessions.keep(session, title);
}

void RecentWork::note(const QString &path) const
{
    if (Imports::kindOf(path))
        m_files.note(path);
}

void RecentWork::require(const Entry &entry) const
{
    if (QFileInfo::exists(entry.file))
        return;
    QFile file(entry.file);
    const bool isOpen = file.open(QIODevice::ReadOnly); // which says why not
    m_files.forget(entry.file);
    if (!isOpen)
        throw PlatformError::aboutFile(entry.file, file.errorString());
}

QString RecentWork::nameOf(Kind kind)
{
    switch (kind) {
    case Kind::session:
        return u"改过的字幕"_s;
    case Kind::subtitles:
        return u"字幕文件"_s;
    case Kind::project:
        return u"FCP 项目"_s;
    case Kind::media:
        break;
    }
    return u"音视频"_s;
}
