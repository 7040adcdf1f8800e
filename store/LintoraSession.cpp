#include "store/LintoraSession.h"

#include "core/Failure.h"
#include "core/files/FileReader.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "store/Uuid.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void throwTooLarge()
{
    throw ConversionError(u"字幕会话过大。"_s);
}

QList<SubtitleTrack> readTracks(JsonReader &json)
{
    QList<SubtitleTrack> tracks;
    json.readArray([&] { tracks.append(readSubtitleTrack(json)); });
    return tracks;
}

void readOptionalField(JsonReader &json, QByteArrayView key, LintoraSession &session)
{
    if (key == "previousItems" && !json.readNull())
        session.previousItems = readSubtitles(json);
    else if (key == "look" && !json.readNull())
        session.look = readTitleTemplate(json);
    else if (key == "tracks" && !json.readNull())
        session.tracks = readTracks(json);
    else if (key == "selectedTrackID" && !json.readNull())
        session.selectedTrackID = Uuid::read(json);
    else if (key == "splitOriginal" && !json.readNull())
        session.splitOriginal = Uuid::read(json);
}

void readField(JsonReader &json, QByteArrayView key, LintoraSession &session)
{
    if (key == "schema")
        session.schema = json.readInteger();
    else if (key == "items")
        session.items = readSubtitles(json);
    else if (key == "source")
        session.source = json.readText();
    else if (key == "options")
        session.options = readOptions(json);
    else if (key == "removeFillers")
        session.removeFillers = json.readBoolean();
    else if (key == "removePunctuation")
        session.removePunctuation = json.readBoolean();
    else if (key == "cleaned")
        session.cleaned = json.readBoolean();
    else
        readOptionalField(json, key, session);
}

} // namespace

QByteArray LintoraSession::encoded() const
{
    return jsonBytes([&](JsonWriter &json) { writeLintoraSession(json, *this); });
}

LintoraSession LintoraSession::decode(QByteArrayView data, const Check &check)
{
    if (data.size() > sizeLimit)
        throwTooLarge();
    JsonReader json(data, check);
    LintoraSession session = readLintoraSession(json);
    json.finish();
    if (session.schema != 1 && session.schema != currentSchema)
        throw ConversionError(u"字幕会话版本不支持。"_s);
    return session;
}

LintoraSession LintoraSession::read(const QString &path, const Check &check)
{
    const QFileInfo file(path);
    // Opening a pipe might wait forever.
    if (file.exists() && !file.isFile() && !file.isDir())
        throw PlatformError(u"“%1”不是普通文件。"_s.arg(path));
    return Failure::naming(path, [&] {
        const std::optional<QByteArray> bytes = FileReader::readUpTo(path, sizeLimit);
        if (!bytes)
            throwTooLarge();
        return decode(*bytes, check);
    });
}

LintoraSession readLintoraSession(JsonReader &json)
{
    LintoraSession session;
    json.readObject({"schema", "items", "source", "options", "removeFillers", "removePunctuation", "cleaned"},
                    [&](QByteArrayView key) { readField(json, key, session); });
    return session;
}

void writeLintoraSession(JsonWriter &json, const LintoraSession &session)
{
    json.beginObject();
    json.key("cleaned").boolean(session.cleaned);
    json.key("items");
    writeSubtitles(json, session.items);
    if (session.look) {
        json.key("look");
        writeTitleTemplate(json, *session.look);
    }
    json.key("options");
    writeOptions(json, session.options);
    if (session.previousItems) {
        json.key("previousItems");
        writeSubtitles(json, *session.previousItems);
    }
    json.key("removeFillers").boolean(session.removeFillers);
    json.key("removePunctuation").boolean(session.removePunctuation);
    json.key("schema").integer(session.schema);
    if (session.selectedTrackID) {
        json.key("selectedTrackID");
        Uuid::write(json, *session.selectedTrackID);
    }
    json.key("source").text(session.source);
    if (session.splitOriginal) {
        json.key("splitOriginal");
        Uuid::write(json, *session.splitOriginal);
    }
    if (session.tracks) {
        json.key("tracks");
        json.beginArray();
        for (const SubtitleTrack &track : *session.tracks)
            writeSubtitleTrack(json, track);
        json.endArray();
    }
    json.endObject();
}
