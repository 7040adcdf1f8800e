#include "core/text/ColumnWidth.h"

#include "core/text/Characters.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace ColumnWidth {

int ofScalar(char32_t scalar)
{
    if (scalar >= U' ' && scalar < 0x7F)
        return 1;
    if (Characters::isCommonIdeograph(scalar))
        return 2;
    switch (QChar::category(scalar)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Control:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    switch (u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_EAST_ASIAN_WIDTH)) {
    case U_EA_WIDE:
    case U_EA_FULLWIDTH:
        return 2;
    case U_EA_AMBIGUOUS:
        // “ ” — … and circled numbers are drawn full-width by Chinese fonts, Greek and Cyrillic letters are not.
        return Characters::isLetter(scalar) || scalar == U'’' || scalar == U'‘' || scalar == U'·' ? 1 : 2;
    default:
        return 1;
    }
}

int of(QStringView text)
{
    // Scalar by scalar where each is a character of its own.
    int width = 0;
    const auto isSimple = [](QChar unit) {
        return (unit >= u' ' && unit < QChar(0x7F)) || Characters::isCommonIdeograph(unit.unicode()) ||
               (unit >= u'、' && unit <= u'』') || (unit >= u'！' && unit <= u'～');
    };
    const auto *const stop = std::find_if_not(text.begin(), text.end(), isSimple);
    for (const auto *at = text.begin(); at != stop; ++at)
        width += *at < QChar(0x7F) ? 1 : 2;
    if (stop == text.end())
        return width;
    // A mark may join the last simple character, and adds nothing to it.
    for (Characters::Cursor at(text.sliced(stop - text.begin())); at.next();) {
        int widest = 0;
        for (const char32_t scalar : Characters::Scalars(at.character()))
            widest = std::max(widest, ofScalar(scalar));
        width += widest;
    }
    return width;
}

int ofWidestLine(QStringView text)
{
    int widest = 0;
    for (const QStringView line : text.tokenize(u'\n'))
        widest = std::max(widest, of(line));
    return widest;
}

} // namespace ColumnWidth
