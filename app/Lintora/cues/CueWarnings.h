#pragma once

#include "core/Subtitle.h"

#include <QStringList>

#include <functional>

/// What a person should look at again in a cue. Nothing is ever changed because of it.
namespace CueWarnings {

enum class Kind
{
    tooFast, ///< Less time than the lines of either writing need; who reads the one need not read the other.
    tooShort,
    tooLong,
    overlapping, ///< Ends after the next cue begins.
    tooManyLines,
    tooWide ///< Than the title-safe width, in the track's style.
};

struct Warning
{
    Kind kind = Kind::tooFast;
    QString sentence; ///< With the number that is wrong, without a full stop.

    friend bool operator==(const Warning &, const Warning &) = default;
};

/// Answers whether a text with its line feeds is wider than titles should be.
using IsTooWide = std::function<bool(QStringView text)>;

/// The warnings about `cue` by the limits of CheckLimits for Chinese, in the order of Kind; `next` is the cue that
/// follows it in the list, or null.
QList<Warning> of(const Subtitle &cue, const Subtitle *next, const IsTooWide &isTooWide);

/// Characters that are read, all but white space and punctuation, by the writing of the line in which they stand.
struct Read
{
    qint64 chinese = 0; ///< Of lines whose Chinese characters take longer to read than the others.
    qint64 latin = 0;   ///< Of the other lines.
};

Read readCharacters(const QString &text);

} // namespace CueWarnings
