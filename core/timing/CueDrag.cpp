#include "core/timing/CueDrag.h"

#include "core/CueEditing.h"

#include <algorithm>
#include <cstdlib>

namespace CueDrag {

namespace {

using Room = CueTimeline::Room;

constexpr Room everywhere{.start = 0, .end = CueEditing::latest};

/// What draws a border: an edge of the room that it moves in, and a magnet.
struct Pull
{
    std::optional<qint64> edge = {};
    const Magnet &magnet;
};

/// The nearest of what draws a border that wants to stand at `wantedMS`; absent when nothing is near.
std::optional<qint64> drawnTo(qint64 wantedMS, const Pull &pull, const Rules &rules)
{
    std::optional<qint64> best;
    if (pull.edge && std::abs(*pull.edge - wantedMS) <= rules.reachMS)
        best = pull.edge;
    const std::optional<qint64> magnet = pull.magnet ? pull.magnet(wantedMS, rules.reachMS) : std::nullopt;
    if (magnet && (!best || std::abs(*magnet - wantedMS) < std::abs(*best - wantedMS)))
        best = rules.grid.snapped(*magnet);
    return best;
}

/// Where a border that wants to stand at `wantedMS` comes to stand between `first` and `last`; `asIs` where there is no
/// such place.
qint64 placed(qint64 wantedMS, const Pull &pull, const Rules &rules, Room allowed, qint64 asIs)
{
    if (allowed.start > allowed.end)
        return asIs;
    const qint64 time = rules.snaps ? drawnTo(wantedMS, pull, rules).value_or(rules.grid.snapped(wantedMS)) : wantedMS;
    return std::clamp(time, allowed.start, allowed.end);
}

qint64 frameLater(qint64 time, const FrameGrid &grid)
{
    return grid.time(grid.frame(time) + 1);
}

qint64 frameEarlier(qint64 time, const FrameGrid &grid)
{
    return grid.time(grid.frame(time) - 1);
}

CueTimes wholeDragged(const CueTimes &from, Room room, qint64 byMS, const Rules &rules)
{
    if (!rules.snaps) {
        const qint64 by = std::clamp(byMS, room.start - from.start, room.end - from.end);
        return {.cue = from.cue, .start = from.start + by, .end = from.end + by};
    }
    const FrameGrid &grid = rules.grid;
    const auto start = drawnTo(from.start + byMS, {.edge = room.start, .magnet = rules.starts}, rules);
    const auto end = drawnTo(from.end + byMS, {.edge = room.end, .magnet = rules.ends}, rules);
    const auto distance = [&](const std::optional<qint64> &to, qint64 border) {
        return to ? std::abs(*to - border - byMS) : rules.reachMS + 1;
    };
    const bool goesByEnd = distance(end, from.end) < distance(start, from.start);
    const qint64 held = goesByEnd ? from.end : from.start;
    const qint64 target = (goesByEnd ? end : start).value_or(held + byMS);
    const qint64 frames =
        std::clamp(grid.frame(target) - grid.frame(held), grid.frame(room.start) - grid.frame(from.start),
                   grid.frame(room.end) - grid.frame(from.end));
    if (frames == 0)
        return from;
    // A neighbour may stand between two frames.
    return {.cue = from.cue,
            .start = std::max(room.start, grid.time(grid.frame(from.start) + frames)),
            .end = std::min(room.end, grid.time(grid.frame(from.end) + frames))};
}

} // namespace

QList<CueTimes> dragged(const CueTimeline &cues, const Grip &grip, qint64 byMS, const Rules &rules)
{
    const Subtitle &cue = cues.items().at(grip.cue);
    CueTimes times{.cue = grip.cue, .start = cue.start, .end = cue.end};
    if (byMS == 0)
        return {times};
    Room room = rules.passes ? everywhere : cues.roomOf(grip.cue);
    const Room around = room;
    // What overlaps already need not go apart.
    room = {.start = std::min(room.start, cue.start), .end = std::max(room.end, cue.end)};
    switch (grip.part) {
    case Part::start:
        times.start = placed(cue.start + byMS, {.edge = around.start, .magnet = rules.starts}, rules,
                             {.start = room.start, .end = frameEarlier(cue.end, rules.grid)}, cue.start);
        return {times};
    case Part::end:
        times.end = placed(cue.end + byMS, {.edge = around.end, .magnet = rules.ends}, rules,
                           {.start = frameLater(cue.start, rules.grid), .end = room.end}, cue.end);
        return {times};
    case Part::joint: {
        const Subtitle &next = cues.items().at(grip.next);
        const Magnet either = [&](qint64 nearMS, qint64 withinMS) {
            const auto start = rules.starts ? rules.starts(nearMS, withinMS) : std::nullopt;
            const auto end = rules.ends ? rules.ends(nearMS, withinMS) : std::nullopt;
            return end && (!start || std::abs(*end - nearMS) < std::abs(*start - nearMS)) ? end : start;
        };
        times.end =
            placed(cue.end + byMS, {.magnet = either}, rules,
                   {.start = frameLater(cue.start, rules.grid), .end = frameEarlier(next.end, rules.grid)}, cue.end);
        return {times, {.cue = grip.next, .start = times.end, .end = next.end}};
    }
    case Part::whole:
        return {wholeDragged(times, room, byMS, rules)};
    }
    return {};
}

std::optional<Room> drawn(const CueTimeline &cues, qint64 fromMS, qint64 toMS, const Rules &rules)
{
    const std::optional<Room> gap = cues.gapAt(fromMS);
    if (!gap)
        return std::nullopt;
    const Room room = rules.passes ? everywhere : *gap;
    const qint64 start =
        placed(std::min(fromMS, toMS), {.edge = gap->start, .magnet = rules.starts}, rules, room, room.start);
    const qint64 end = placed(std::max(fromMS, toMS), {.edge = gap->end, .magnet = rules.ends}, rules, room, room.end);
    return end >= frameLater(start, rules.grid) ? std::optional(Room{.start = start, .end = end}) : std::nullopt;
}

std::optional<Grip> jointAtEnd(const CueTimeline &cues, qsizetype cue, const FrameGrid &grid)
{
    const Subtitle &held = cues.items().at(cue);
    const auto next = cues.after(held.start);
    const bool touches = next && grid.frame(cues.items().at(*next).start) == grid.frame(held.end);
    return touches ? std::optional(Grip{.cue = cue, .part = Part::joint, .next = *next}) : std::nullopt;
}

std::optional<Grip> jointAtStart(const CueTimeline &cues, qsizetype cue, const FrameGrid &grid)
{
    const Subtitle &held = cues.items().at(cue);
    const auto previous = cues.before(held.start);
    const bool touches = previous && grid.frame(cues.items().at(*previous).end) == grid.frame(held.start);
    return touches ? std::optional(Grip{.cue = *previous, .part = Part::joint, .next = cue}) : std::nullopt;
}

} // namespace CueDrag
