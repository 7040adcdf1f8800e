#pragma once

#include <QList>
#include <QStringView>

/// Where two wordings of a cue differ, character by character.
namespace TextDifference {

/// A stretch of a text, in UTF-16 units.
struct Stretch
{
    qsizetype start = 0;
    qsizetype length = 0;

    friend bool operator==(const Stretch &, const Stretch &) = default;
};

struct Difference
{
    QList<Stretch> removed; ///< Of the text before, ascending, never touching.
    QList<Stretch> added;   ///< Of the text after, the same.

    friend bool operator==(const Difference &, const Difference &) = default;
};

/// What has to be marked in either text. Characters are those that a reader sees: no mark begins within one.
Difference between(const QString &before, const QString &after);

} // namespace TextDifference
