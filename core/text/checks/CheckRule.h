#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>
#include <span>

/// What is looked at in a track. The order is that of a list of findings about one cue.
enum class CheckRule
{
    readingSpeed, ///< Less time than the characters need.
    tooShort,
    tooLong,
    smallGap, ///< A gap to the next cue that flickers: shorter than some frames, but there.
    overlap,
    tooWide,
    tooManyLines,
    doubled,       ///< The text of the cue before once more.
    blanks,        ///< White space at the ends of lines, or lines without text.
    mixedWidth,    ///< Half-width marks in Chinese, full-width letters, digits or marks in Latin text.
    mixedDigits,   ///< Numbers in Chinese characters where most are in digits, or the other way about.
    brackets,      ///< One of a pair alone.
    mixedTerms,    ///< A term written in two ways.
    badCharacters, ///< Control, invisible and replacement characters.
    offFrame       ///< Begins or ends between frames.
};

namespace CheckRules {

std::span<const CheckRule> all(); ///< In order.

QString name(CheckRule rule);  ///< For files and the command line: "reading-speed".
QString title(CheckRule rule); ///< For people: "读不完".

std::optional<CheckRule> named(QStringView name);

} // namespace CheckRules
