#include "app/window/SystemFileDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// What the dialogs of one window have in common.
struct Shared
{
    std::function<QWidget *()> window;
    QPointer<QFileDialog> open = {};
    QString folder = QDir::homePath(); ///< Where the last file was chosen.
};

/// "SRT、FCPXML (*.srt *.SRT …)". Extensions are taken in either case, but some systems' dialogs go by the letter.
QString nameFilter(const QStringList &extensions, const QString &kinds = {})
{
    QStringList names;
    QStringList patterns;
    for (const QString &extension : extensions) {
        names += extension.toUpper();
        patterns += u"*."_s + extension;
        patterns += u"*."_s + extension.toUpper();
    }
    return u"%1 (%2)"_s.arg(kinds.isEmpty() ? names.join(u"、") : kinds, patterns.join(u' '));
}

void present(const std::shared_ptr<Shared> &shared, QFileDialog &dialog, const QString &beside,
             const FileDialogs::Chosen &chosen)
{
    shared->open = &dialog;
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    const QFileInfo neighbour(beside);
    dialog.setDirectory(!beside.isEmpty() && neighbour.dir().exists() ? neighbour.absolutePath() : shared->folder);
    QObject::connect(&dialog, &QFileDialog::fileSelected, &dialog, [shared, chosen](const QString &path) {
        const QFileInfo file(path);
        shared->folder = file.isDir() ? file.absoluteFilePath() : file.absolutePath();
        // It is answered, though it goes only later: what is chosen may lead to the next question.
        shared->open = nullptr;
        chosen(path);
    });
    dialog.open();
}

/// Whether a dialog is open already, which then comes forward.
bool isAsking(const Shared &shared)
{
    if (!shared.open)
        return false;
    shared.open->raise();
    shared.open->activateWindow();
    return true;
}

} // namespace

FileDialogs systemFileDialogs(std::function<QWidget *()> window)
{
    const auto shared = std::make_shared<Shared>(Shared{.window = std::move(window)});
    FileDialogs dialogs;
    dialogs.open = [shared](const FileDialogs::Opening &request, const FileDialogs::Chosen &chosen) {
        if (isAsking(*shared))
            return;
        auto *const dialog = new QFileDialog(shared->window(), request.title);
        dialog->setFileMode(QFileDialog::ExistingFile);
        dialog->setNameFilter(nameFilter(request.extensions, request.kinds));
        present(shared, *dialog, request.beside, chosen);
    };
    dialogs.save = [shared](const FileDialogs::Saving &request, const FileDialogs::Chosen &chosen) {
        if (isAsking(*shared))
            return;
        auto *const dialog = new QFileDialog(shared->window(), request.title);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setNameFilter(nameFilter({request.extension}));
        dialog->setDefaultSuffix(request.extension);
        dialog->selectFile(request.suggestion);
        present(shared, *dialog, request.beside, chosen);
    };
    dialogs.folder = [shared](const FileDialogs::Folder &request, const FileDialogs::Chosen &chosen) {
        if (isAsking(*shared))
            return;
        auto *const dialog = new QFileDialog(shared->window(), request.title);
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        present(shared, *dialog, request.beside, chosen);
    };
    return dialogs;
}
