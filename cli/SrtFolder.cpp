#include "cli/SrtFolder.h"

#include "cli/Interrupt.h"
#include "core/SRT.h"
#include "core/files/AtomicFile.h"
#include "core/files/Folder.h"
#include "core/files/Utf8Writer.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace SrtFolder {

QString fileName(const QString &label)
{
    constexpr qsizetype longest = 60; // characters, 240 bytes of the 255 that file systems take
    QString name = label.trimmed().left(longest);
    for (QChar &each : name) {
        if (each.unicode() < 0x20 || each.unicode() == 0x7F || u"/\\:*?\"<>|"_s.contains(each))
            each = u'_';
    }
    if (name.isEmpty() || name.startsWith(u'.'))
        name.prepend(u'_');
    return name + u".srt"_s;
}

void write(const QDir &folder, const std::vector<File> &files, const std::function<void()> &beforeCommit)
{
    Folder::make(folder.path());
    std::vector<std::unique_ptr<AtomicFile>> written;
    for (const auto &[name, items] : files) {
        AtomicFile &file = *written.emplace_back(std::make_unique<AtomicFile>(folder.filePath(name)));
        Utf8Writer out([&](QByteArrayView block) {
            Interrupt::check();
            file.write(block);
        });
        SRT::serialize(items, out);
    }
    beforeCommit();
    Interrupt::check();
    for (const auto &file : written)
        file->commit();
}

} // namespace SrtFolder
