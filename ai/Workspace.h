#pragma once

#include <QString>

/// A fresh scratch folder of one operation, private to the user, which goes with this object and all that is in it.
class Workspace
{
public:
    /// @throws PlatformError when it cannot be made
    Workspace();
    ~Workspace();
    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;

    const QString &path() const { return m_path; }

    /// The path of a file in it.
    QString file(const QString &name) const;

    /// Removes the scratch folders that runs of ours have left when they were killed: those of this user in which
    /// nothing has been written for a day. For the program's start, on any thread.
    static void removeLeftovers();

private:
    QString m_path;
};
