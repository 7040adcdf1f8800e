#pragma once

#include "app/model/BackgroundTask.h"
#include "app/model/Imports.h"
#include "core/repair/SubtitleRepair.h"

/// Opening a subtitle file that the strict reader does not take: what would be done to it is shown, and the file is
/// opened only when a person wants it so.
class FileRepairing : public QObject
{
    Q_OBJECT

public:
    FileRepairing() = default;

    /// A file that was refused, and may be looked at. Empty while there is none.
    const QString &offered() const { return m_offered; }
    void offer(const QString &path);
    void withdraw() { offer({}); }

    bool isShown() const { return !m_path.isEmpty(); }
    const QString &path() const { return m_path; } ///< Of what is shown.
    void show(const QString &path);                ///< Begins to read it, in the encoding that is likeliest.
    void close();

    void setEncoding(const QString &name); ///< Reads the file once more, in this encoding.

    const std::optional<RepairedFile> &file() const
    {
        return m_file;
    } ///< Absent until it is read, or when it cannot be.
    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why it cannot be read.

    void accept(); ///< Has what is shown opened.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void offeredChanged();
    void shownChanged();
    void fileChanged(); ///< The file or the status.
    void accepted(const Imports::ImportedCues &cues, qsizetype repairs);

private:
    void read(const QString &encoding);
    void setStatus(const QString &status, bool isRefused = false);

    QString m_offered;
    QString m_path;
    std::optional<RepairedFile> m_file;
    QString m_status;
    bool m_isRefused = false;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
};
