#include "app/Lintora/cues/SplitPosition.h"

#include "core/text/Characters.h"

#include <algorithm>

namespace SplitPosition {

namespace {

/// How well a text divides before `position`: 3 between lines, 2 behind a mark, 1 between words, 0 within one.
int quality(const QString &text, qsizetype position)
{
    const QChar before = text.at(position - 1);
    if (before == u'\n')
        return 3;
    if (before.isPunct() && !text.at(position).isPunct())
        return 2;
    return before.isSpace() ? 1 : 0;
}

} // namespace

qsizetype nearMiddle(const QString &text)
{
    const qsizetype middle = text.size() / 2;
    qsizetype best = middle;
    int bestQuality = -1;
    for (Characters::Cursor at(text); at.next() && at.end() < text.size();) {
        const int found = quality(text, at.end());
        const bool isNearer = std::abs(at.end() - middle) < std::abs(best - middle);
        if (found > bestQuality || (found == bestQuality && isNearer)) {
            best = at.end();
            bestQuality = found;
        }
    }
    return best;
}

qsizetype inTidied(const QString &typed, qsizetype position, const QString &tidied)
{
    const auto isInk = [](QChar unit) { return !unit.isSpace(); };
    auto ink = std::count_if(typed.cbegin(), typed.cbegin() + position, isInk);
    qsizetype at = 0;
    for (; at < tidied.size() && ink > 0; ++at)
        ink -= isInk(tidied.at(at)) ? 1 : 0;
    return at;
}

} // namespace SplitPosition
