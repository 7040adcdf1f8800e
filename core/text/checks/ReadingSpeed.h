#pragma once

#include <QStringView>

#include <span>

/// How long a text takes to be read. Who reads the lines of one writing need not read those of the other.
namespace ReadingSpeed {

/// The characters of a line that are read: letters and digits, not marks and blanks.
struct Characters
{
    qint64 chinese = 0; ///< Han, kana, Hangul.
    qint64 latin = 0;   ///< All others.
};

/// Characters that can be read in a second, 1 or more.
struct Speed
{
    qint64 chinese = 12;
    qint64 latin = 20;

    friend bool operator==(const Speed &, const Speed &) = default;
};

/// What the lines of the writing need that takes longer.
struct Need
{
    qint64 ms = 0;         ///< Rounded up.
    bool isChinese = true; ///< Whether it is the Chinese lines; a line is Chinese when its Chinese takes longer.
};

Characters of(QStringView line);

Need needed(std::span<const Characters> lines, const Speed &speed);

} // namespace ReadingSpeed
