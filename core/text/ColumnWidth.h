#pragma once

#include <QStringView>

/// How wide a text is shown, whatever the font: in half columns. A Chinese character and a full-width mark take two, a
/// Latin letter, a digit, an ASCII mark or a blank takes one, a combining mark or an invisible character none.
namespace ColumnWidth {

int ofScalar(char32_t scalar); ///< 0, 1 or 2.

/// The sum over the characters of `text`, which are as wide as their widest scalar: 👨‍👩‍👧 takes two.
int of(QStringView text);

/// The widest of the lines of `text`.
int ofWidestLine(QStringView text);

} // namespace ColumnWidth
