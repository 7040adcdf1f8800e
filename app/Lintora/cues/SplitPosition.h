#pragma once

#include <QString>

/// Where the text of a cue is taken apart. Positions are in UTF-16 units.
namespace SplitPosition {

/// The break between lines, sentences, clauses or words nearest to the middle; between characters where there is none.
qsizetype nearMiddle(const QString &text);

/// Where in `tidied` the `position` of `typed` is: the same text with blanks and empty lines that went.
qsizetype inTidied(const QString &typed, qsizetype position, const QString &tidied);

} // namespace SplitPosition
