#pragma once

#include <QString>

#include <optional>

/// The role of a native caption, which tells its format and language: "SRT?captionFormat=SRT.cmn-Hans".
struct CaptionRole
{
    enum class Format
    {
        itt,
        srt,
        cea608
    };

    Format format = Format::itt;
    QString language; ///< A tag such as "en" or "cmn-Hans", as it stands.

    /// Absent when `role` does not say a format that we know, or says no language. The name before it is the user's.
    static std::optional<CaptionRole> parse(const QString &role);

    /// `tag` as Final Cut Pro names the language: "zh-CN" is its "cmn-Hans". It takes what it does not know for
    /// English. Absent when `tag` cannot be the name of a language.
    static std::optional<QString> knownLanguage(const QString &tag);

    static QString formatName(Format format); ///< As roles have it: "ITT", "SRT", "CEA608".

    friend bool operator==(const CaptionRole &, const CaptionRole &) = default;

    QString toText() const; ///< The role as Final Cut Pro names it at first: "iTT?captionFormat=ITT.en".
};
