#include "fcp/Options.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

Options readOptions(JsonReader &json)
{
    Options options;
    const auto readOptionalText = [&]() -> std::optional<QString> {
        if (json.readNull())
            return std::nullopt;
        return json.readText();
    };
    json.readObject({"rate", "width", "height", "font", "fontSize", "fontColor", "strokeEnabled", "strokeColor",
                     "strokeWidth", "shadowEnabled", "shadowColor", "shadowBlur", "bottomPercent", "shiftMS", "name"},
                    [&](QByteArrayView key) {
                        if (key == "rate")
                            options.rate = readFrameRate(json);
                        else if (key == "width")
                            options.width = json.readInteger();
                        else if (key == "height")
                            options.height = json.readInteger();
                        else if (key == "font")
                            options.font = json.readText();
                        else if (key == "fontSize")
                            options.fontSize = json.readNumber();
                        else if (key == "fontColor")
                            options.fontColor = json.readText();
                        else if (key == "strokeEnabled")
                            options.strokeEnabled = json.readBoolean();
                        else if (key == "strokeColor")
                            options.strokeColor = json.readText();
                        else if (key == "strokeWidth")
                            options.strokeWidth = json.readNumber();
                        else if (key == "shadowEnabled")
                            options.shadowEnabled = json.readBoolean();
                        else if (key == "shadowColor")
                            options.shadowColor = json.readText();
                        else if (key == "shadowBlur")
                            options.shadowBlur = json.readNumber();
                        else if (key == "bottomPercent")
                            options.bottomPercent = json.readNumber();
                        else if (key == "shiftMS")
                            options.shiftMS = json.readInteger();
                        else if (key == "name")
                            options.name = json.readText();
                        else if (key == "titleRole")
                            options.titleRole = readOptionalText();
                        else if (key == "fontFace")
                            options.fontFace = readOptionalText();
                    });
    return options;
}

void writeOptions(JsonWriter &json, const Options &options)
{
    json.beginObject();
    json.key("bottomPercent").number(options.bottomPercent);
    json.key("font").text(options.font);
    json.key("fontColor").text(options.fontColor);
    if (options.fontFace)
        json.key("fontFace").text(*options.fontFace);
    json.key("fontSize").number(options.fontSize);
    json.key("height").integer(options.height);
    json.key("name").text(options.name);
    json.key("rate");
    writeFrameRate(json, options.rate);
    json.key("shadowBlur").number(options.shadowBlur);
    json.key("shadowColor").text(options.shadowColor);
    json.key("shadowEnabled").boolean(options.shadowEnabled);
    json.key("shiftMS").integer(options.shiftMS);
    json.key("strokeColor").text(options.strokeColor);
    json.key("strokeEnabled").boolean(options.strokeEnabled);
    json.key("strokeWidth").number(options.strokeWidth);
    if (options.titleRole)
        json.key("titleRole").text(*options.titleRole);
    json.key("width").integer(options.width);
    json.endObject();
}
