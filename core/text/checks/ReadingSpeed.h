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
    qint64 weight = 0;     ///< The same exactly; a second has the product of both speeds.
    bool isChinese = true; ///< Whether it is the Chinese lines; a line is Chinese when its Chinese takes longer.
};

Characters of(QStringView line);

/// Whether a line is Chinese: whether its Chinese characters take longer to be read than its others.
bool isChinese(const Characters &line, const Speed &speed);

Need needed(std::span<const Characters> lines, const Speed &speed);

/// Characters a second that are to be read in `lengthMS`, above 0, of which `speed` allows the limit for their writing.
/// In tenths, rounded up, so that what is beyond the limit looks so too.
double demanded(const Need &need, qint64 lengthMS, const Speed &speed);

} // namespace ReadingSpeed
