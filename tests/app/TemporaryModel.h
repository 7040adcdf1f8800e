#pragma once

#include "app/model/LintoraModel.h"
#include "tests/support/MemoryKeys.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

/// What a model finds outside itself, in a folder that goes with this object. Dialogs note that they were asked
/// for.
class TemporaryModel
{
public:
    LintoraModel::Surroundings surroundings()
    {
        FileDialogs dialogs;
        dialogs.open = [this](const FileDialogs::Opening &request, const FileDialogs::Chosen &chosen) {
            openings += request.title;
            if (!answer.isEmpty())
                chosen(answer);
        };
        dialogs.folder = [this](const FileDialogs::Folder &, const FileDialogs::Chosen &chosen) {
            if (!answer.isEmpty())
                chosen(answer);
        };
        dialogs.save = [](const FileDialogs::Saving &, const FileDialogs::Chosen &) {};
        return {.draftURL = path(QStringLiteral("Draft.json")),
                .stylePresetsURL = path(QStringLiteral("StylePresets.json")),
                .settings = std::make_shared<QSettings>(path(QStringLiteral("settings.ini")), QSettings::IniFormat),
                .dialogs = dialogs,
                .keys = keys.store(),
                .models = models};
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// A file of that name in the folder.
    QUrl file(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        return written ? QUrl::fromLocalFile(file.fileName()) : QUrl();
    }

    /// A file with this many cues.
    QUrl srt(const QString &name, int cues) const
    {
        QByteArray content;
        for (int i = 1; i <= cues; ++i)
            content += QByteArray::number(i) + "\n00:00:0" + QByteArray::number(i) + ",000 --> 00:00:0" +
                       QByteArray::number(i) + ",900\n字幕\n\n";
        return file(name, content);
    }

    QString answer;       ///< What dialogs for opening are answered with; empty: given up.
    QStringList openings; ///< Titles of the dialogs for opening, in order.
    MemoryKeys keys;      ///< The keychain.
    QList<LocalModel> models = LocalModels::catalog();

private:
    const QTemporaryDir m_folder;
};
