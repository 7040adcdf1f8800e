#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>

/// A file of records that grows at its end, and tells after any crash which of them are whole.
///
/// ```
///   "LINTORA STEPS 1\n"     16 bytes; another number is another program's file
///   record*                 4 bytes  length of the content in bytes, at least 1, least significant first
///                           8 bytes  check: the first bytes of BLAKE2b-256 over the check before it (of the first
///                                    record: the header) and the content
///                           content
/// ```
/// A record that is cut off, damaged, or not behind the one it was written behind ends the file: it and all that
/// follows are cut off. So what is read is always a beginning of what was written.
///
/// One program at a time has the file, by the kernel's lock on an empty file beside it (".lock"), which goes with its
/// owner. On a file system without such locks nobody has it.
///
/// Used by one thread at a time. A failed call leaves the object fit for discard() and begin() only.
class RecordLog
{
public:
    static constexpr qint64 sizeLimit = 67'108'864; ///< Bytes of the largest file that is read.

    explicit RecordLog(const QString &path);

    /// Takes the file and returns what is whole in it, to go on behind. Empty when there is no such file, it is of
    /// another format, or another program has it: nothing can be appended then before begin().
    /// @throws PlatformError when it cannot be read or cut
    QList<QByteArray> open();

    bool isOpen() const { return m_file.isOpen(); } ///< Whether records can be appended.
    qint64 size() const { return m_size; }          ///< Bytes of the open file.

    /// Puts a file of these records in the place of any other, whole or not at all and for good. False when another
    /// program has the file, which is then left alone.
    /// @throws PlatformError
    bool begin(const QList<QByteArray> &records);

    void append(const QList<QByteArray> &records); ///< Outlives this program's end. @throws PlatformError
    void sync();                                   ///< Makes it outlive a power cut. @throws PlatformError

    /// Removes the file. What cannot be removed is at least made empty, as far as that is possible.
    void discard();

private:
    bool takeLock();
    void reopen();
    QByteArray framed(const QList<QByteArray> &records);

    QFile m_file;
    QFile m_lock;       ///< Open while the lock is ours.
    QByteArray m_check; ///< Of the last record.
    qint64 m_size = 0;
};
