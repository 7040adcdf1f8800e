#include "app/Lintora/controls/DurationText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace DurationText {

/// Seconds in tens, then whole minutes.
QString left(qint64 ms)
{
    constexpr qint64 tenSeconds = 10'000;
    constexpr qint64 minute = 60'000;
    constexpr qint64 hour = 60 * minute;
    const auto roundedUp = [ms](qint64 unit) { return (ms + unit - 1) / unit; };
    if (ms <= minute - tenSeconds)
        return u"约剩 %1 秒"_s.arg(std::max<qint64>(1, roundedUp(tenSeconds)) * 10);
    if (ms <= hour - minute)
        return u"约剩 %1 分钟"_s.arg(roundedUp(minute));
    const qint64 minutes = roundedUp(minute);
    return u"约剩 %1 小时 %2 分钟"_s.arg(minutes / 60).arg(minutes % 60);
}

QString taken(qint64 ms)
{
    const qint64 seconds = ms / 1'000;
    const QChar zero(u'0');
    if (seconds < 3'600)
        return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, zero);
    return u"%1:%2:%3"_s.arg(seconds / 3'600).arg(seconds / 60 % 60, 2, 10, zero).arg(seconds % 60, 2, 10, zero);
}

} // namespace DurationText
