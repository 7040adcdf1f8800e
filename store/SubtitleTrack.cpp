#include "store/SubtitleTrack.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "store/Uuid.h"

SubtitleTrack readSubtitleTrack(JsonReader &json)
{
    SubtitleTrack track;
    json.readObject({"id", "label", "items", "options", "removeFillers", "removePunctuation", "cleaned"},
                    [&](QByteArrayView key) {
                        if (key == "id")
                            track.id = Uuid::read(json);
                        else if (key == "label")
                            track.label = json.readText();
                        else if (key == "items")
                            track.items = readSubtitles(json);
                        else if (key == "options")
                            track.options = readOptions(json);
                        else if (key == "removeFillers")
                            track.removeFillers = json.readBoolean();
                        else if (key == "removePunctuation")
                            track.removePunctuation = json.readBoolean();
                        else if (key == "previousItems" && !json.readNull())
                            track.previousItems = readSubtitles(json);
                        else if (key == "cleaned")
                            track.cleaned = json.readBoolean();
                        else if (key == "look" && !json.readNull())
                            track.look = readTitleTemplate(json);
                        else if (key == "origins" && !json.readNull())
                            track.origins = readTextOrigins(json);
                    });
    return track;
}

void writeSubtitleTrack(JsonWriter &json, const SubtitleTrack &track)
{
    json.beginObject();
    json.key("cleaned").boolean(track.cleaned);
    json.key("id");
    Uuid::write(json, track.id);
    json.key("items");
    writeSubtitles(json, track.items);
    json.key("label").text(track.label);
    if (track.look) {
        json.key("look");
        writeTitleTemplate(json, *track.look);
    }
    json.key("options");
    writeOptions(json, track.options);
    if (!track.origins.isEmpty()) {
        json.key("origins");
        writeTextOrigins(json, track.origins);
    }
    if (track.previousItems) {
        json.key("previousItems");
        writeSubtitles(json, *track.previousItems);
    }
    json.key("removeFillers").boolean(track.removeFillers);
    json.key("removePunctuation").boolean(track.removePunctuation);
    json.endObject();
}
