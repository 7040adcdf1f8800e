#pragma once

#include "core/Check.h"

#include <QByteArrayView>
#include <QString>

#include <memory>

class QFileDevice;

/// A file that is replaced whole or not at all.
///
/// The new content is written beside the target and renamed over it by commit(). Without commit() the target stays as
/// it was and the half-written file is removed. A symbolic link stays a link: what it points to is replaced. An
/// existing target keeps its permissions. What is no regular file (a terminal, a pipe, /dev/full) cannot be replaced
/// and is written to as it stands. The detail of every PlatformError names the target.
class AtomicFile
{
public:
    /// @throws PlatformError when the target cannot be replaced: its folder is missing or not writable, it is
    /// read-only, it is a folder.
    explicit AtomicFile(const QString &path);
    ~AtomicFile();
    Q_DISABLE_COPY_MOVE(AtomicFile)

    void write(QByteArrayView bytes); ///< @throws PlatformError, for instance when the disk is full.

    /// Brings what was written to the disk, so that nothing but the renaming is left to do. @throws PlatformError
    void sync();

    /// What has been written, read back from the file system. `check` is called every few milliseconds.
    /// @throws PlatformError
    QByteArray readBack(const Check &check = {}) const;

    /// What the replacement outlives once commit() has returned.
    enum class Durability
    {
        crash,    ///< The end of this program.
        powerCut, ///< The end of the system too: the content and its name in the folder have reached the disk.
    };

    /// Puts the written content in the target's place.
    /// @throws PlatformError; the target is then as it was, unless only its folder failed to reach the disk.
    void commit(Durability durability = Durability::crash);

    /// Removes what writers of the file at `path` left beside it when they were killed, more than ten minutes ago.
    static void removeLeftovers(const QString &path);

private:
    std::unique_ptr<QFileDevice> m_file;
};
