#pragma once

#include <QTemporaryDir>

/// A home folder for a program of tests, from which nothing reaches the developer's own settings. Made before the
/// application, and gone with it.
class OwnHome
{
public:
    OwnHome()
    {
        // These stand before the home folder where they are set.
        for (const char *const folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
            qunsetenv(folder);
        qputenv("HOME", m_folder.path().toLocal8Bit());
    }

private:
    QTemporaryDir m_folder;
};
