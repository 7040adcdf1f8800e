#pragma once

#include "core/text/UnitSet.h"

#include <QStringView>

/// Brackets and quotation marks that come in pairs, Chinese and Latin ones.
namespace Brackets {

constexpr QStringView openings = u"（《「『【〔〈“‘([{\"";
constexpr QStringView closings = u"）》」』】〕〉”’)]}\"";

/// Whether the mark opens a pair. The straight quotation mark, which does either, counts as neither.
inline bool isOpening(QChar mark)
{
    static constexpr UnitSet marks(openings.chopped(1));
    return marks.contains(mark);
}

inline bool isClosing(QChar mark)
{
    static constexpr UnitSet marks(closings.chopped(1));
    return marks.contains(mark);
}

/// The mark that closes what `opening` opens, the straight quotation mark itself; a null character for any other.
inline QChar closing(QChar opening)
{
    const qsizetype index = openings.indexOf(opening);
    return index < 0 ? QChar() : closings[index];
}

} // namespace Brackets
