#include "core/timing/TimedCues.h"

#include "core/text/ColumnWidth.h"

#include <algorithm>
#include <cmath>

namespace TimedCues {

namespace {

/// Consecutive cues that were not heard, half-open.
struct Gap
{
    size_t begin;
    size_t end;
};

std::vector<Gap> gapsOf(const std::vector<Heard> &cues)
{
    std::vector<Gap> gaps;
    for (size_t i = 0; i < cues.size(); ++i) {
        if (cues[i].startMS)
            continue;
        if (gaps.empty() || gaps.back().end < i)
            gaps.push_back({.begin = i, .end = i});
        gaps.back().end = i + 1;
    }
    return gaps;
}

int widthOf(const Heard &cue)
{
    return std::max(ColumnWidth::ofWidestLine(cue.text), 1);
}

/// Shares the time around a gap out among its cues. At the ends of the list there is no neighbour: as long as it takes
/// to say.
void fill(std::vector<Heard> &cues, const Gap &gap, double msPerHalfColumn)
{
    double width = 0;
    for (size_t i = gap.begin; i < gap.end; ++i)
        width += widthOf(cues[i]);
    const double spoken = width * msPerHalfColumn;
    double begin = gap.begin > 0 ? double(*cues[gap.begin - 1].endMS) : 0;
    double end = gap.end < cues.size() ? double(*cues[gap.end].startMS) : begin + spoken;
    // Longer than it takes to say, a pause belongs to nobody: before the first cue, and around the others.
    const double pause = end - begin - spoken * 1.5;
    if (pause > 0) {
        begin += gap.begin > 0 ? pause / 2 : pause;
        end -= gap.begin > 0 ? pause / 2 : 0;
    }
    double passed = 0;
    for (size_t i = gap.begin; i < gap.end; ++i) {
        cues[i].startMS = std::llround(begin + (end - begin) * passed / width);
        passed += widthOf(cues[i]);
        cues[i].endMS = std::llround(begin + (end - begin) * passed / width);
        cues[i].isUnsure = true;
    }
}

/// Frames of a cue, half-open.
struct Frames
{
    qint64 begin;
    qint64 end;
};

/// Where a gap has fewer frames than cues, the one before it gives half of what is missing.
void makeRoom(std::vector<Frames> &frames, const Gap &gap)
{
    if (gap.begin == 0)
        return;
    Frames &before = frames[gap.begin - 1];
    const auto needed = static_cast<qint64>(gap.end - gap.begin);
    const qint64 missing = needed - (frames[gap.end - 1].end - before.end);
    if (missing <= 0)
        return;
    before.end = std::max(before.end - (missing + 1) / 2, before.begin + 1);
    for (size_t i = gap.begin; i < gap.end; ++i)
        frames[i] = {.begin = before.end, .end = before.end};
}

} // namespace

QList<TimedCue> placed(std::vector<Heard> cues, double msPerHalfColumn, const FrameGrid &grid)
{
    const std::vector<Gap> gaps = gapsOf(cues);
    for (const Gap &gap : gaps)
        fill(cues, gap, msPerHalfColumn);
    std::vector<Frames> frames;
    for (const Heard &cue : cues)
        frames.push_back({.begin = grid.frame(*cue.startMS), .end = grid.frame(*cue.endMS)});
    for (const Gap &gap : gaps)
        makeRoom(frames, gap);

    QList<TimedCue> result;
    qint64 free = 0; ///< The first frame that nobody has.
    for (size_t i = 0; i < cues.size(); ++i) {
        const qint64 begin = std::max(frames[i].begin, free);
        free = std::max(frames[i].end, begin + 1);
        const Subtitle cue{
            .id = result.size() + 1, .start = grid.time(begin), .end = grid.time(free), .text = cues[i].text};
        const qint64 moved = std::max(std::abs(cue.start - *cues[i].startMS), std::abs(cue.end - *cues[i].endMS));
        result.append({.cue = cue,
                       .confidence = cues[i].confidence,
                       .isUnsure = cues[i].isUnsure || cues[i].confidence < surest || moved > largestMoveMS});
    }
    return result;
}

} // namespace TimedCues
