#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/// The files that were opened last, each once: the newest six. Kept in a file of its own.
///
/// Values of this type name that file; all calls block. One that cannot be read holds none.
class RecentFiles
{
public:
    static constexpr qsizetype most = 6;

    struct Entry
    {
        QString path;
        QDateTime opened; ///< In local time.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    /// The file need not exist, nor its folder.
    explicit RecentFiles(QString file);

    QList<Entry> list() const; ///< Newest first. No file that is named is looked at.

    /// `path` was opened now. @throws PlatformError when that cannot be written
    void note(const QString &path) const;

    void forget(const QString &path) const; ///< @throws PlatformError when that cannot be written

private:
    void write(const QList<Entry> &entries) const;

    QString m_file;
};
