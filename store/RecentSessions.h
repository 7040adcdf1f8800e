#pragma once

#include "store/LintoraSession.h"

#include <QDateTime>

/// The sessions whose place another one has taken, in a folder of their own: one file each, the newest ten.
///
/// Values of this type name the folder; all calls block.
class RecentSessions
{
public:
    static constexpr qsizetype most = 10;

    struct Entry
    {
        QString file;   ///< Path of the session file.
        QString title;  ///< Under which it was kept.
        QDateTime kept; ///< When, in local time.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    /// The folder need not exist.
    explicit RecentSessions(QString folder);

    /// What is there, newest first. No file is read.
    QList<Entry> list() const;

    /// Adds `session`, for good once this returns, and lets go of the oldest beyond the limit. One that is there
    /// already becomes the newest. `title` must be fit for a file's name.
    /// @throws ConversionError "字幕会话过大。" for what could not be read back, PlatformError
    void keep(const LintoraSession &session, const QString &title) const;

private:
    QString m_folder;
};
