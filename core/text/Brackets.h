#pragma once

#include <QStringView>

/// Brackets and quotation marks that come in pairs, Chinese and Latin ones.
namespace Brackets {

constexpr QStringView openings = u"（《「『【〔〈“‘([{\"";
constexpr QStringView closings = u"）》」』】〕〉”’)]}\"";

/// Whether the mark opens a pair. The straight quotation mark, which does either, counts as neither.
constexpr bool isOpening(QChar mark)
{
    return mark != u'"' && openings.contains(mark);
}

constexpr bool isClosing(QChar mark)
{
    return mark != u'"' && closings.contains(mark);
}

/// The mark that closes what `opening` opens, the straight quotation mark itself; a null character for any other.
inline QChar closing(QChar opening)
{
    const qsizetype index = openings.indexOf(opening);
    return index < 0 ? QChar() : closings[index];
}

} // namespace Brackets
