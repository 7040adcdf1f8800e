#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// How the model asks the person for files. The window opens the system's dialogs, a test answers by itself.
///
/// No call waits: the answer comes on the main thread when the person has chosen, and never when they give up.
struct FileDialogs
{
    using Chosen = std::function<void(const QString &path)>;

    struct Opening
    {
        QString title;
        QStringList extensions; ///< What may be chosen, lower case, without the dot.
        QString kinds = {};     ///< What such files are called; empty: by their extensions.
        QString beside = {};    ///< A file in whose folder to begin; empty: where a file was chosen last.
    };

    struct Saving
    {
        QString title;
        QString suggestion;  ///< File name, with the extension.
        QString extension;   ///< What a name without one gets, without the dot.
        QString beside = {}; ///< As in Opening.
    };

    struct Folder
    {
        QString title;
        QString beside = {}; ///< As in Opening.
    };

    std::function<void(const Opening &, Chosen)> open;
    std::function<void(const Saving &, Chosen)> save;
    std::function<void(const Folder &, Chosen)> folder; ///< For one that exists.
};
