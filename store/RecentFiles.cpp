#include "store/RecentFiles.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 recentFilesLimit = 1'048'576; // bytes; paths take 4,096 at most

RecentFiles::Entry readRecentFile(JsonReader &json)
{
    RecentFiles::Entry entry;
    json.readObject({"opened", "path"}, [&](QByteArrayView key) {
        if (key == "opened")
            entry.opened = QDateTime::fromMSecsSinceEpoch(json.readInteger());
        else if (key == "path")
            entry.path = json.readText();
    });
    return entry;
}

QString plain(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

RecentFiles::RecentFiles(QString file)
    : m_file(std::move(file))
{}

QList<RecentFiles::Entry> RecentFiles::list() const
{
    // Opening what is no regular file, a pipe for instance, might wait forever.
    if (!QFileInfo(m_file).isFile())
        return {};
    try {
        QList<Entry> entries;
        const QByteArray bytes = FileReader::readUpTo(m_file, recentFilesLimit).value_or(QByteArray());
        JsonReader json(bytes);
        json.readObject({"files"}, [&](QByteArrayView key) {
            if (key == "files")
                json.readArray([&] { entries += readRecentFile(json); });
        });
        json.finish();
        return entries.first(std::min(most, entries.size()));
    } catch (const PlatformError &) {
        return {};
    }
}

void RecentFiles::note(const QString &path) const
{
    QList<Entry> entries = list();
    const QString name = plain(path);
    entries.removeIf([&](const Entry &entry) { return entry.path == name; });
    entries.prepend({.path = name, .opened = QDateTime::currentDateTime()});
    write(entries.first(std::min(most, entries.size())));
}

void RecentFiles::forget(const QString &path) const
{
    QList<Entry> entries = list();
    if (entries.removeIf([&](const Entry &entry) { return entry.path == path; }) > 0)
        write(entries);
}

void RecentFiles::write(const QList<Entry> &entries) const
{
    Folder::make(QFileInfo(m_file).path());
    AtomicFile file(m_file);
    file.write(jsonBytes([&](JsonWriter &json) {
        json.beginObject();
        json.key("files");
        json.beginArray();
        for (const Entry &entry : entries) {
            json.beginObject();
            json.key("opened").integer(entry.opened.toMSecsSinceEpoch());
            json.key("path").text(entry.path);
            json.endObject();
        }
        json.endArray();
        json.endObject();
    }));
    file.commit();
}
