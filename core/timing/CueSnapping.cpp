#include "core/timing/CueSnapping.h"

#include "core/timing/SpeechBorders.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

namespace CueSnapping {

namespace {

/// Positions of cues in ascending order of their starts or ends.
std::vector<qsizetype> orderedBy(const QList<Subtitle> &cues, qint64 Subtitle::*time)
{
    std::vector<qsizetype> order(size_t(cues.size()));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, [&](qsizetype i) { return cues[i].*time; });
    return order;
}

/// The time of the frame next to `border`, unless `now` lies on that frame.
qint64 onFrame(const std::optional<qint64> &border, qint64 now, const FrameGrid &grid)
{
    return !border || grid.frame(*border) == grid.frame(now) ? now : grid.snapped(*border);
}

/// `cue` with its borders at speech, within [from, to): what it takes without lying in a neighbour.
Subtitle moved(Subtitle cue, const SpeechBorders &borders, const FrameGrid &grid, qint64 withinMS, qint64 from,
               qint64 to)
{
    const qint64 start = onFrame(borders.clearOnset(cue.start, withinMS), cue.start, grid);
    const qint64 end = onFrame(borders.clearEnd(cue.end, withinMS), cue.end, grid);
    const Subtitle former = cue;
    cue.start = start < former.start && start < from ? former.start : start;
    cue.end = end > former.end && end > to ? former.end : end;
    return 2 * (cue.end - cue.start) < former.end - former.start ? former : cue;
}

} // namespace

Result snapped(QList<Subtitle> cues, const SpeechBorders &borders, const FrameGrid &grid, qint64 withinMS)
{
    const QList<Subtitle> former = cues;
    const std::vector<qsizetype> byStart = orderedBy(former, &Subtitle::start);
    const std::vector<qsizetype> byEnd = orderedBy(former, &Subtitle::end);
    auto ended = byEnd.begin();
    qint64 from = 0; // where all have ended that lay before the cue
    for (const qsizetype i : byStart) {
        for (; ended != byEnd.end() && former[*ended].end <= former[i].start; ++ended)
            from = std::max(from, cues[*ended].end);
        const auto next =
            std::ranges::lower_bound(byStart, former[i].end, {}, [&](qsizetype k) { return former[k].start; });
        const qint64 to = next == byStart.end() ? std::numeric_limits<qint64>::max() : former[*next].start;
        cues[i] = moved(former[i], borders, grid, withinMS, from, to);
    }
    Result result;
    for (qsizetype i = 0; i < cues.size(); ++i) {
        if (cues[i] != former[i])
            result.moves.append(
                {.cue = i, .startBy = cues[i].start - former[i].start, .endBy = cues[i].end - former[i].end});
    }
    result.cues = std::move(cues);
    return result;
}

} // namespace CueSnapping
