#include "store/SubtitleStylePreset.h"

#include "core/ConversionError.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "core/text/Characters.h"
#include "fcp/ColorText.h"
#include "store/Uuid.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestName = 60; // characters

ConversionError invalidContent()
{
    return ConversionError(u"样式预设内容无效，请检查字号与位置。"_s);
}

bool isWithin(double value, double highest)
{
    return std::isfinite(value) && value >= 0 && value <= highest;
}

bool hasControlCharacter(const QString &name)
{
    return std::any_of(name.begin(), name.end(), [](QChar c) { return c < u' '; });
}

} // namespace

void SubtitleStylePreset::validate() const
{
    const QString shown = name.trimmed();
    const bool isSound = !shown.isEmpty() && !Characters::isLonger(shown, longestName) && !style.font.isEmpty() &&
                         style.width >= 1 && style.height >= 1 && isWithin(style.fontSize, 10'000) &&
                         style.fontSize > 0 && isWithin(style.strokeWidth, 20) && isWithin(style.shadowBlur, 30) &&
                         isWithin(style.bottomPercent, 40);
    if (!isSound)
        throw invalidContent();
    if (!ColorText::read(style.fontColor) || !ColorText::read(style.strokeColor) || !ColorText::read(style.shadowColor))
        throw ConversionError(u"样式预设的颜色无效。"_s);
}

Options SubtitleStylePreset::applying(const Options &target) const
{
    Options result = style;
    result.fontSize = style.fontSize * (static_cast<double>(target.height) / static_cast<double>(style.height));
    result.rate = target.rate;
    result.width = target.width;
    result.height = target.height;
    result.shiftMS = target.shiftMS;
    result.name = target.name;
    result.titleRole = target.titleRole;
    return result;
}

SubtitleStylePreset readSubtitleStylePreset(JsonReader &json)
{
    SubtitleStylePreset preset;
    json.readObject({"id", "name", "style"}, [&](QByteArrayView key) {
        if (key == "id")
            preset.id = Uuid::read(json);
        else if (key == "name")
            preset.name = json.readText();
        else if (key == "style")
            preset.style = readOptions(json);
        else if (key == "look" && !json.readNull())
            preset.look = readTitleTemplate(json);
    });
    return preset;
}

void writeSubtitleStylePreset(JsonWriter &json, const SubtitleStylePreset &preset)
{
    json.beginObject();
    json.key("id");
    Uuid::write(json, preset.id);
    if (preset.look) {
        json.key("look");
        writeTitleTemplate(json, *preset.look);
    }
    json.key("name").text(preset.name);
    json.key("style");
    writeOptions(json, preset.style);
    json.endObject();
}

QList<SubtitleStylePreset> readSubtitleStylePresets(JsonReader &json)
{
    QList<SubtitleStylePreset> presets;
    json.readArray([&] { presets.append(readSubtitleStylePreset(json)); });
    return presets;
}

void writeSubtitleStylePresets(JsonWriter &json, const QList<SubtitleStylePreset> &presets)
{
    json.beginArray();
    for (const SubtitleStylePreset &preset : presets)
        writeSubtitleStylePreset(json, preset);
    json.endArray();
}

namespace SubtitleStylePresets {

namespace {

/// The place of the preset called `name`, -1 when there is none.
qsizetype indexOf(const QList<SubtitleStylePreset> &presets, const QString &name)
{
    const auto isNamed = [&](const SubtitleStylePreset &preset) { return preset.name.trimmed() == name.trimmed(); };
    const auto found = std::find_if(presets.begin(), presets.end(), isNamed);
    return found == presets.end() ? -1 : found - presets.begin();
}

qsizetype requireIndex(const QList<SubtitleStylePreset> &presets, const QString &name)
{
    const qsizetype index = indexOf(presets, name);
    if (index < 0)
        throw ConversionError(u"没有名为“%1”的样式预设。"_s.arg(name.trimmed()));
    return index;
}

qsizetype requireIndex(const QList<SubtitleStylePreset> &presets, const QUuid &id)
{
    const auto found = std::ranges::find(presets, id, &SubtitleStylePreset::id);
    if (found == presets.end())
        throw ConversionError(u"该样式预设已不存在。"_s);
    return found - presets.begin();
}

/// A preset that may be kept under that name.
SubtitleStylePreset checked(const QUuid &id, const QString &name, const Options &style,
                            const std::optional<TitleTemplate> &look)
{
    const SubtitleStylePreset preset{.id = id, .name = name.trimmed(), .style = style, .look = look};
    if (hasControlCharacter(preset.name))
        throw invalidContent();
    preset.validate();
    return preset;
}

} // namespace

const SubtitleStylePreset &named(const QList<SubtitleStylePreset> &presets, const QString &name)
{
    return presets[requireIndex(presets, name)];
}

QList<SubtitleStylePreset> saving(QList<SubtitleStylePreset> presets, const QString &name, const Options &style,
                                  const std::optional<TitleTemplate> &look)
{
    const qsizetype former = indexOf(presets, name);
    const SubtitleStylePreset preset =
        checked(former < 0 ? QUuid::createUuid() : presets[former].id, name, style, look);
    if (former < 0)
        presets.append(preset);
    else
        presets[former] = preset;
    return presets;
}

QList<SubtitleStylePreset> renaming(QList<SubtitleStylePreset> presets, const QUuid &id, const QString &name)
{
    const qsizetype index = requireIndex(presets, id);
    const qsizetype same = indexOf(presets, name);
    if (same >= 0 && same != index)
        throw ConversionError(u"已有同名的样式预设，请换一个名称。"_s);
    presets[index] = checked(id, name, presets[index].style, presets[index].look);
    return presets;
}

QList<SubtitleStylePreset> removing(QList<SubtitleStylePreset> presets, const QString &name)
{
    presets.removeAt(requireIndex(presets, name));
    return presets;
}

QList<SubtitleStylePreset> removing(QList<SubtitleStylePreset> presets, const QUuid &id)
{
    presets.removeAt(requireIndex(presets, id));
    return presets;
}

} // namespace SubtitleStylePresets
