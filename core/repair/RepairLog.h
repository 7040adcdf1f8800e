#pragma once

#include "core/Subtitle.h"

#include <optional>

/// What was done to a file that could not be read as it stands.
struct FileRepair
{
    qint64 line = 0;           ///< Of the file, from 1.
    std::optional<qint64> cue; ///< The number of the cue that came of it; absent where none did.
    QString what;              ///< For the person, without a full stop.

    friend bool operator==(const FileRepair &, const FileRepair &) = default;
};

/// The cues that have been found and what was done to get them, as a reader of one format fills it in.
class RepairLog
{
public:
    /// Of the cue that is being read, the next to be added.
    void repair(qint64 line, const QString &what);

    /// Of what becomes no cue.
    void drop(qint64 line, const QString &what);

    /// Adds the cue being read, whose time stands in `line`. Its text is taken as a file has it: formatting goes, and
    /// so do lines without text and control characters. Without text left it is dropped, and that is noted.
    void add(qint64 line, qint64 start, qint64 end, const QString &text);

    /// Mends cues that end before they start, once all are there.
    void mendTimes();

    const QList<FileRepair> &repairs() const { return m_repairs; }
    const QList<Subtitle> &items() const { return m_items; }

private:
    qint64 number() const { return m_items.size() + 1; }

    QList<FileRepair> m_repairs;
    QList<Subtitle> m_items;
    QList<qint64> m_lines; ///< Of each cue.
};
