#pragma once

#include <QString>
#include <QStringList>

/// An installed font family, under every name that someone may look for.
struct FontFamily
{
    QString family;      ///< As the font database calls it, and as Options::font holds it.
    QString chineseName; ///< Empty when the font has none.
    QString englishName; ///< Empty when the font has none.
    QStringList faces;   ///< Names of its faces ("Regular", "Bold"), in the font database's order.

    /// How the Chinese name is pronounced, as Pinyin::Reader writes it; empty without a Chinese name.
    QString pronunciation;

    /// What a picker shows.
    const QString &displayName() const { return chineseName.isEmpty() ? family : chineseName; }

    friend bool operator==(const FontFamily &, const FontFamily &) = default;
};
