#pragma once

#include "store/LintoraSession.h"

#include <QDateTime>

#include <limits>

/// Sessions that are kept in a folder of their own: one file each, the newest ones.
///
/// Values of this type name the folder; all calls block.
class KeptSessions
{
public:
    /// How much is kept. The newest one always is.
    struct Limits
    {
        qsizetype count;
        qint64 bytes = std::numeric_limits<qint64>::max(); ///< Of all files together.
    };

    struct Entry
    {
        QString file;   ///< Path of the session file.
        QString title;  ///< Under which it was kept.
        QDateTime kept; ///< When, in local time.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    /// The folder need not exist.
    KeptSessions(QString folder, Limits limits);

    /// What is there, newest first. No file is read.
    QList<Entry> list() const;

    /// Adds `session`, for good once this returns, and lets go of the oldest beyond the limits. One that is there
    /// already becomes the newest. `title` must be fit for a file's name.
    /// @throws ConversionError "字幕会话过大。" for what could not be read back, PlatformError
    void keep(const LintoraSession &session, const QString &title,
              const QDateTime &at = QDateTime::currentDateTimeUtc()) const;

private:
    QString m_folder;
    Limits m_limits;
};
