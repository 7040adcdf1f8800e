#include "fcp/texts/TextOrigin.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

QList<TextOrigin> readTextOrigins(JsonReader &json)
{
    QList<TextOrigin> origins;
    json.readArray([&] {
        TextOrigin origin;
        json.readObject({"cue", "number", "text"}, [&](QByteArrayView key) {
            if (key == "cue")
                origin.cue = json.readInteger();
            else if (key == "number")
                origin.number = json.readInteger();
            else if (key == "text")
                origin.text = json.readText();
        });
        origins.append(origin);
    });
    return origins;
}

void writeTextOrigins(JsonWriter &json, const QList<TextOrigin> &origins)
{
    json.beginArray();
    for (const TextOrigin &origin : origins) {
        json.beginObject();
        json.key("cue").integer(origin.cue);
        json.key("number").integer(origin.number);
        json.key("text").text(origin.text);
        json.endObject();
    }
    json.endArray();
}
