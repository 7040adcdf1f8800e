#include "core/Subtitle.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

Subtitle readSubtitle(JsonReader &json)
{
    Subtitle cue;
    json.readObject({"id", "start", "end", "text"}, [&](QByteArrayView key) {
        if (key == "id")
            cue.id = json.readInteger();
        else if (key == "start")
            cue.start = json.readInteger();
        else if (key == "end")
            cue.end = json.readInteger();
        else if (key == "text")
            cue.text = json.readText();
    });
    return cue;
}

void writeSubtitle(JsonWriter &json, const Subtitle &cue)
{
    json.beginObject();
    json.key("end").integer(cue.end);
    json.key("id").integer(cue.id);
    json.key("start").integer(cue.start);
    json.key("text").text(cue.text);
    json.endObject();
}

QList<Subtitle> readSubtitles(JsonReader &json)
{
    QList<Subtitle> cues;
    json.readArray([&] { cues.append(readSubtitle(json)); });
    return cues;
}

void writeSubtitles(JsonWriter &json, const QList<Subtitle> &cues)
{
    json.beginArray();
    for (const Subtitle &cue : cues)
        writeSubtitle(json, cue);
    json.endArray();
}
