#include "core/text/checks/ReadingSpeed.h"

#include "core/text/Characters.h"

#include <algorithm>

namespace ReadingSpeed {

namespace {

bool isWide(char32_t letter)
{
    switch (::Characters::script(letter)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Hangul:
        return true;
    default:
        return letter == U'ー' || letter == U'〇';
    }
}

} // namespace

Characters of(QStringView line)
{
    Characters characters;
    for (const char32_t scalar : ::Characters::Scalars(line)) {
        if (::Characters::isCommonIdeograph(scalar) || (scalar > 0x7F && isWide(scalar)))
            ++characters.chinese;
        else if (::Characters::isLetterOrDigit(scalar) && QChar::category(scalar) != QChar::Mark_NonSpacing)
            ++characters.latin;
    }
    return characters;
}

bool isChinese(const Characters &line, const Speed &speed)
{
    return line.chinese * speed.latin > line.latin * speed.chinese;
}

Need needed(std::span<const Characters> lines, const Speed &speed)
{
    // In units of which a second has speed.chinese * speed.latin.
    qint64 chineseLines = 0;
    qint64 latinLines = 0;
    for (const Characters &line : lines) {
        const qint64 chinese = line.chinese * speed.latin;
        const qint64 latin = line.latin * speed.chinese;
        (isChinese(line, speed) ? chineseLines : latinLines) += chinese + latin;
    }
    const qint64 second = speed.chinese * speed.latin;
    const qint64 longest = std::max(chineseLines, latinLines);
    return {.ms = (1'000 * longest + second - 1) / second, .weight = longest, .isChinese = chineseLines >= latinLines};
}

double demanded(const Need &need, qint64 lengthMS, const Speed &speed)
{
    const qint64 limit = need.isChinese ? speed.chinese : speed.latin;
    const qint64 whole = speed.chinese * speed.latin * lengthMS;
    return double((need.weight * limit * 10'000 + whole - 1) / whole) / 10;
}

} // namespace ReadingSpeed
