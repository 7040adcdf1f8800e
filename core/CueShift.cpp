#include "core/CueShift.h"

#include "core/ConversionError.h"
#include "core/CueEditing.h"

using namespace Qt::StringLiterals;

namespace CueShift {

std::optional<qint64> moved(qint64 timeMS, const Distance &distance)
{
    // A record may hold times that nobody could have typed; from there nothing is within reach.
    if (timeMS < -CueEditing::latest || timeMS > 2 * CueEditing::latest)
        return std::nullopt;
    const qint64 from = distance.grid ? distance.grid->frame(timeMS) : timeMS;
    const qint64 last = distance.grid ? distance.grid->frame(CueEditing::latest) : CueEditing::latest;
    qint64 to = 0;
    if (__builtin_add_overflow(from, distance.count, &to) || to < 0 || to > last)
        return std::nullopt;
    const qint64 time = distance.grid ? distance.grid->time(to) : to;
    return time > CueEditing::latest ? std::nullopt : std::optional(time);
}

QList<Subtitle> moving(QList<Subtitle> items, const QList<qsizetype> &indices, const Distance &distance)
{
    for (const qsizetype index : indices) {
        Subtitle &cue = items[index];
        const auto start = moved(cue.start, distance);
        auto end = moved(cue.end, distance);
        if (start && end && *end <= *start && cue.end > cue.start)
            end = *start + (cue.end - cue.start);
        if (!start || !end || *end > CueEditing::latest)
            throw ConversionError(u"时间须在 0 到 100 小时之间。"_s, u"第 %1 条字幕会移出这个范围。"_s.arg(index + 1));
        cue.start = *start;
        cue.end = *end;
    }
    return items;
}

} // namespace CueShift
