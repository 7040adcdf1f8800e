#pragma once

#include <QString>

#include <span>
#include <vector>

/// Numbers as they are spoken, whichever way they are written: 二十三, 23 and 贰拾叁 are the same.
namespace SpokenNumbers {

/// One digit of a number that is written in `begin` to `end` of the sequence; digits that share a place each have a
/// part of it.
struct Digit
{
    char16_t value = u'0'; ///< '0' to '9'.
    size_t begin = 0;
    size_t end = 0;
};

bool isNumeral(char32_t character); ///< A digit, folded to ASCII, or a character of Chinese numbers, simplified.

/// The digits of `numerals`, for each of which isNumeral holds: 三万二 is 32000, 二〇二六 is 2026, 二十三十 is 20 30.
std::vector<Digit> digits(std::span<const char32_t> numerals);

} // namespace SpokenNumbers
