#pragma once

#include <QString>

/// A word as a recogniser heard it.
///
/// A list of words is in the order of their times; words may touch and do not overlap. Blanks around a word belong to
/// no one and may be there or not.
struct HeardWord
{
    QString text;       ///< One word or a part of one; in Chinese often a single character.
    qint64 startMS = 0; ///< Milliseconds from the start of the timeline.
    qint64 endMS = 0;   ///< Milliseconds, not before startMS.

    friend bool operator==(const HeardWord &, const HeardWord &) = default;
};

Q_DECLARE_TYPEINFO(HeardWord, Q_RELOCATABLE_TYPE);
