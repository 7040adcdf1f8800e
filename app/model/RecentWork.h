#pragma once

#include "store/RecentFiles.h"
#include "store/RecentSessions.h"

/// What was worked on of late: files that were opened, and edited sessions whose place others have taken.
///
/// Values of this type name the folder that it is kept in; all calls block.
class RecentWork
{
public:
    enum class Kind
    {
        session, ///< Kept here; there is no other copy.
        subtitles,
        project,
        media
    };

    struct Entry
    {
        Kind kind;
        QString file; ///< Its path.
        QString title;
        QDateTime kept; ///< When it was kept or opened, in local time.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    explicit RecentWork(const QString &folder);

    QList<Entry> list() const; ///< Newest first. No file that is named is looked at.

    /// Adds a session as RecentSessions does. @throws as that
    void keep(const LintoraSession &session, const QString &title) const;

    /// A file of that path was opened: it is the newest now. @throws PlatformError when that cannot be written
    void note(const QString &path) const;

    /// Makes sure that the file is there. One that is not is forgotten.
    /// @throws PlatformError in the words of whoever reads such a file
    void require(const Entry &entry) const;

    static QString nameOf(Kind kind); ///< For the person: 改过的字幕.

private:
    RecentSessions m_sessions;
    RecentFiles m_files;
};
