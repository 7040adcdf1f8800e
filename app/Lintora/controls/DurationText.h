#pragma once

#include <QString>

/// Lengths of time as people read them.
namespace DurationText {

/// "约剩 20 秒", "约剩 3 分钟": no more exact than anybody can know it.
QString left(qint64 ms);

/// "0:05", "1:02:03": how long something has taken.
QString taken(qint64 ms);

} // namespace DurationText
