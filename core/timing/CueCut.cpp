#include "core/timing/CueCut.h"

#include "core/ConversionError.h"
#include "core/CueEditing.h"
#include "core/text/ColumnWidth.h"
#include "core/text/breaking/BreakPoints.h"
#include "core/text/breaking/WordBorders.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace CueCut {

std::optional<qsizetype> place(const QString &text, double share)
{
    // A place that is off by a tenth of the text is as bad as one that costs so much more.
    constexpr double costOfAll = 1'000;
    const double width = std::max(1, ColumnWidth::of(text));
    std::optional<qsizetype> best;
    double lowest = 0;
    const auto consider = [&](qsizetype position, double before, double cost) {
        const double price = cost + std::abs(before / width - share) * costOfAll;
        if (!best || price < lowest) {
            best = position;
            lowest = price;
        }
    };
    WordBorders words;
    std::vector<BreakPoint> points;
    qsizetype begin = 0;
    int before = 0;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        if (begin > 0)
            consider(begin, before, 0);
        points.clear();
        BreakPoints::find(line, words, points);
        for (const BreakPoint &point : points)
            consider(begin + point.begin, before + point.beginWidth, point.cost);
        begin += line.size() + 1;
        before += ColumnWidth::of(line);
    }
    return best;
}

QList<Subtitle> cut(QList<Subtitle> items, qsizetype index, qint64 timeMS, const FrameGrid &grid)
{
    const Subtitle &cue = items.at(index);
    const qint64 time = grid.snapped(timeMS);
    if (grid.frame(time) <= grid.frame(cue.start) || grid.frame(time) >= grid.frame(cue.end))
        throw ConversionError(u"播放头不在所选字幕之内，不能在这里拆分。"_s);
    const auto position = place(cue.text, double(time - cue.start) / double(cue.end - cue.start));
    if (!position)
        throw ConversionError(u"这条字幕只有一个字，不能拆分。"_s);
    items = CueEditing::splitting(std::move(items), index, *position);
    items[index].end = time;
    items[index + 1].start = time;
    return items;
}

} // namespace CueCut
