#pragma once

#include "fcp/Options.h"
#include "fcp/titles/TitleTemplate.h"

#include <CLI/App.hpp>

#include <optional>
#include <string>

/// The options of a command that shape the titles.
class StyleArguments
{
public:
    void add(CLI::App &command);

    /// `base` with what was given put in: first the record of --options, then the preset, then the single options.
    /// @throws Arguments::WrongUse for a value that is none; PlatformError when the record cannot be read;
    /// ConversionError or PlatformError when there is no such preset or the presets cannot be read.
    Options applied(Options base) const;

    /// `options` with the preset of that name put in. @throws ConversionError or PlatformError as above
    static Options withPreset(const Options &options, const std::string &preset);

    bool hasTemplate() const { return m_template.has_value(); }

    /// The title of the user's own that the titles are to look like: of --template, else of the preset; absent where
    /// there is neither. What later versions than `minorVersion` brought is left out.
    /// @throws Arguments::WrongUse; ConversionError or PlatformError when there is no such title or preset
    std::optional<TitleTemplate> look(int minorVersion) const;

    /// The look that is kept with the preset of that name, if one is.
    static std::optional<TitleTemplate> lookOfPreset(const std::string &preset);

private:
    std::optional<std::string> m_optionsFile;
    std::optional<std::string> m_preset;
    std::optional<std::string> m_template;
    std::optional<std::string> m_templateTitle;
    std::optional<std::string> m_rate;
    std::optional<std::string> m_size;
    std::optional<std::string> m_font;
    std::optional<std::string> m_face;
    std::optional<std::string> m_fontSize;
    std::optional<std::string> m_color;
    std::optional<bool> m_stroke;
    std::optional<std::string> m_strokeWidth;
    std::optional<std::string> m_strokeColor;
    std::optional<bool> m_shadow;
    std::optional<std::string> m_shadowBlur;
    std::optional<std::string> m_shadowColor;
    std::optional<std::string> m_bottom;
    std::optional<std::string> m_shift;
    std::optional<std::string> m_name;
    std::optional<std::string> m_role;
};
