#include "app/fonts/FontIndexFile.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Goes up when the readings or what is kept of a font change: older files are then found out again.
constexpr qint64 version = 1;

constexpr qint64 largestFile = 16 << 20; ///< Bytes; 2,000 families take half of one of these megabytes.

FontFamily readFamily(JsonReader &json)
{
    FontFamily family;
    json.readObject({"chinese", "english", "faces", "family", "pronunciation"}, [&](QByteArrayView key) {
        if (key == "chinese")
            family.chineseName = json.readText();
        else if (key == "english")
            family.englishName = json.readText();
        else if (key == "faces")
            json.readArray([&] { family.faces.append(json.readText()); });
        else if (key == "family")
            family.family = json.readText();
        else if (key == "pronunciation")
            family.pronunciation = json.readText();
    });
    if (family.family.isEmpty())
        json.refuse(u"字体名称");
    return family;
}

void writeFamily(JsonWriter &json, const FontFamily &family)
{
    json.beginObject();
    json.key("chinese").text(family.chineseName);
    json.key("english").text(family.englishName);
    json.key("faces").beginArray();
    for (const QString &face : family.faces)
        json.text(face);
    json.endArray();
    json.key("family").text(family.family);
    json.key("pronunciation").text(family.pronunciation);
    json.endObject();
}

} // namespace

QList<FontFamily> FontIndexFile::decode(QByteArrayView bytes)
{
    QList<FontFamily> families;
    QSet<QString> seen;
    JsonReader json(bytes);
    json.readObject({"families", "version"}, [&](QByteArrayView key) {
        if (key == "version") {
            if (json.readInteger() != version)
                json.refuse(u"版本");
        } else if (key == "families") {
            json.readArray([&] {
                FontFamily family = readFamily(json);
                if (seen.contains(family.family))
                    json.refuse(u"不重复的字体");
                seen.insert(family.family);
                families.append(std::move(family));
            });
        }
    });
    json.finish();
    return families;
}

QByteArray FontIndexFile::encode(const QList<FontFamily> &families)
{
    return jsonBytes([&](JsonWriter &json) {
        json.beginObject();
        json.key("families").beginArray();
        for (const FontFamily &family : families)
            writeFamily(json, family);
        json.endArray();
        json.key("version").integer(version);
        json.endObject();
    });
}

QList<FontFamily> FontIndexFile::load(const QString &path)
{
    if (!QFileInfo::exists(path))
        return {};
    try {
        const std::optional<QByteArray> bytes = FileReader::readUpTo(path, largestFile);
        return bytes ? decode(*bytes) : QList<FontFamily>();
    } catch (const PlatformError &) {
        // Nothing of the user's is lost with a cache.
        return {};
    }
}

void FontIndexFile::save(const QString &path, const QList<FontFamily> &families)
{
    Folder::make(QFileInfo(path).absolutePath());
    AtomicFile file(path);
    file.write(encode(families));
    file.commit();
}
