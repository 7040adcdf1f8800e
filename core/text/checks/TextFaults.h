#pragma once

#include "core/Subtitle.h"

#include <QString>

/// Faults that show in the text of one cue alone, and the safe ways to mend them.
namespace TextFaults {

/// White space at the ends of lines, and lines without text: how many lines have it.
qsizetype blanks(QStringView text);
QString withoutBlanks(const QString &text);

/// Half-width marks between Chinese characters, and full-width letters, digits and, in text without Chinese, marks: how
/// many characters are of the wrong width.
qsizetype mixedWidth(QStringView text);
QString withOneWidth(const QString &text);

/// Control characters, U+FFFD, invisible ones such as U+200B or a byte order mark, and what is no character at all.
/// What joins emoji and letters of other scripts is none of them.
struct BadCharacters
{
    qsizetype count = 0;
    bool areRemovable = true; ///< Not where U+FFFD stands for a character that was lost.
    QString first;            ///< As "U+200B"; empty when there is none.
};

BadCharacters badCharacters(QStringView text);
QString withoutBadCharacters(const QString &text); ///< But for U+FFFD.

} // namespace TextFaults
