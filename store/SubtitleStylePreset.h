#pragma once

#include "fcp/Options.h"
#include "fcp/titles/TitleTemplate.h"

#include <QList>
#include <QUuid>

/// A title style that the user saved under a name, to be used on later documents.
struct SubtitleStylePreset
{
    QUuid id;
    QString name;  ///< 1 to 60 characters as the user perceives them, white space at both ends left out of account.
    Options style; ///< All options at the time of saving. The font size is meant for its height.
    std::optional<TitleTemplate> look =
        {}; ///< A title of the user's own in the style's place. Other readers pass it over.

    /// Checks name, numbers and colours.
    /// @throws ConversionError "样式预设内容无效，请检查字号与位置。", "样式预设的颜色无效。"
    void validate() const;

    /// `target` with this style put in: font, face, colours, stroke, shadow and position, and the font size in
    /// proportion to the target's height, not rounded. Frame rate and size, time shift, name and role stay the
    /// target's.
    Options applying(const Options &target) const;

    friend bool operator==(const SubtitleStylePreset &, const SubtitleStylePreset &) = default;
};

/// Reads the object {"id", "name", "style"}, all required, and "look". @throws PlatformError naming the key path.
SubtitleStylePreset readSubtitleStylePreset(JsonReader &json);
void writeSubtitleStylePreset(JsonWriter &json, const SubtitleStylePreset &preset);

/// The same for an array of presets.
QList<SubtitleStylePreset> readSubtitleStylePresets(JsonReader &json);
void writeSubtitleStylePresets(JsonWriter &json, const QList<SubtitleStylePreset> &presets);

/// Lists of presets in which a name stands once. Names are compared without the white space at their ends.
namespace SubtitleStylePresets {

/// The preset called `name`. @throws ConversionError "没有名为“NAME”的样式预设。"
const SubtitleStylePreset &named(const QList<SubtitleStylePreset> &presets, const QString &name);

/// `presets` with `style` saved under `name`: in the place of the preset of that name, whose id it keeps, or at the end
/// under a fresh id.
/// @throws ConversionError as validate does, and for a name with control characters.
QList<SubtitleStylePreset> saving(QList<SubtitleStylePreset> presets, const QString &name, const Options &style,
                                  const std::optional<TitleTemplate> &look = std::nullopt);

/// `presets` with the preset of that id called `name`. @throws ConversionError as saving does,
/// "该样式预设已不存在。", or "已有同名的样式预设，请换一个名称。"
QList<SubtitleStylePreset> renaming(QList<SubtitleStylePreset> presets, const QUuid &id, const QString &name);

/// `presets` without the one called `name`. @throws ConversionError as named does.
QList<SubtitleStylePreset> removing(QList<SubtitleStylePreset> presets, const QString &name);

/// `presets` without the one of that id. @throws ConversionError "该样式预设已不存在。"
QList<SubtitleStylePreset> removing(QList<SubtitleStylePreset> presets, const QUuid &id);

} // namespace SubtitleStylePresets
