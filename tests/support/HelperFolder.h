#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A folder of helper programs that play what a test tells them, and that the program finds while this object lives
/// (VELMORA_SUBTITLE_HELPERS). Scratch folders are made in it too (TMPDIR), so that what is left of them is seen.
class HelperFolder
{
public:
    HelperFolder();
    ~HelperFolder();
    HelperFolder(const HelperFolder &) = delete;
    HelperFolder &operator=(const HelperFolder &) = delete;

    /// Puts a helper of that name there which plays `lines` (see ScriptedHelper.cpp).
    void script(const QString &name, const QStringList &lines);

    /// The path of a file in the folder.
    QString file(const QString &name) const;

    /// The arguments of each of a helper's runs so far.
    QList<QStringList> runs(const QString &name) const;

    /// The bodies of the requests that a helper was sent.
    QList<QByteArray> requests(const QString &name) const;

    /// The helpers that run, and what they have started: as many as are still in the system's table of processes.
    int running() const;

    /// Waits, 20 seconds at most, until `count` processes were started by the helpers. Whether they were.
    bool waitForProcesses(int count) const;

    /// The scratch folders that are there.
    QStringList scratchFolders() const;

private:
    QList<int> processes() const;

    QTemporaryDir m_folder;
    QByteArray m_formerTemporary;
};
