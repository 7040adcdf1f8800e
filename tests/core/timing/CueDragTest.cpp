#include "core/timing/CueDrag.h"

#include "core/CueEditing.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using CueDrag::Part;

namespace {

constexpr FrameGrid grid{.numerator = 25, .denominator = 1}; // a frame is 40 ms

QList<Subtitle> cues(std::initializer_list<std::pair<qint64, qint64>> times)
{
    QList<Subtitle> items;
    for (const auto &[start, end] : times)
        items += Subtitle{.id = items.size() + 1, .start = start, .end = end, .text = u"字"_s};
    return items;
}

/// As the times of silence are found.
CueDrag::Magnet at(qint64 timeMS)
{
    return [timeMS](qint64 nearMS, qint64 withinMS) {
        return std::abs(nearMS - timeMS) <= withinMS ? std::optional(timeMS) : std::nullopt;
    };
}

} // namespace

TEST(CueTimeline, knows_what_shows_when_whatever_the_order)
{
    const CueTimeline timeline(cues({{4'000, 5'000}, {0, 9'000}, {1'000, 2'000}, {2'000, 3'000}, {9'000, 9'500}}));
    EXPECT_EQ(timeline.between(2'000, 4'000), (QList<qsizetype>{1, 3}));
    EXPECT_EQ(timeline.between(1'999, 4'001), (QList<qsizetype>{1, 2, 3, 0}));
    EXPECT_EQ(timeline.at(2'000), 3);
    EXPECT_EQ(timeline.at(8'999), 1);
    EXPECT_EQ(timeline.at(9'500), std::nullopt);
    EXPECT_EQ(timeline.after(2'000), 0);
    EXPECT_EQ(timeline.before(2'000), 2);
    EXPECT_EQ(timeline.before(0), std::nullopt);
    EXPECT_EQ(timeline.after(9'000), std::nullopt);
    EXPECT_EQ(timeline.roomOf(3), (CueTimeline::Room{9'000, 4'000})); // under the long one
    EXPECT_EQ(timeline.roomOf(4), (CueTimeline::Room{9'000, CueEditing::latest}));
    EXPECT_EQ(timeline.gapAt(3'500), std::nullopt);
    EXPECT_EQ(timeline.gapAt(9'500), (CueTimeline::Room{9'500, CueEditing::latest}));
    EXPECT_EQ(CueTimeline().gapAt(5), (CueTimeline::Room{0, CueEditing::latest}));
}

TEST(CueTimeline, finds_the_same_as_a_look_at_every_cue)
{
    QList<Subtitle> items = Generator(5).cues(300, 40);
    std::swap(items[3], items[200]);
    items[100].end += 60'000;
    const CueTimeline timeline(items);
    for (qint64 time = 0; time < items.last().end; time += 1'777) {
        QList<qsizetype> expected;
        for (qsizetype i = 0; i < items.size(); ++i) {
            if (items[i].start < time + 3'000 && items[i].end > time)
                expected += i;
        }
        std::ranges::stable_sort(expected, {}, [&](qsizetype i) { return items[i].start; });
        ASSERT_EQ(timeline.between(time, time + 3'000), expected) << time;
    }
}

TEST(CueDrag, moves_what_is_held_and_never_past_a_neighbour)
{
    const QList<Subtitle> items = cues({{1'000, 2'000}, {2'000, 3'000}, {4'010, 5'000}, {4'800, 6'000}});
    struct Row
    {
        const char *name;
        CueDrag::Grip grip;
        qint64 by;
        CueDrag::Rules rules;
        QList<CueTimes> expected;
    };
    const CueDrag::Rules plain{.grid = grid};
    const CueDrag::Rules near{.grid = grid, .reachMS = 100};
    const CueDrag::Rules free{.grid = grid, .snaps = false, .reachMS = 100};
    const CueDrag::Rules passing{.grid = grid, .passes = true};
    const CueDrag::Rules heard{.grid = grid, .reachMS = 100, .starts = at(3'655), .ends = at(3'310)};
    const Row rows[] = {
        {"not at all, off the grid", {2, Part::start}, 0, near, {{2, 4'010, 5'000}}},
        {"a start to the nearest frame", {2, Part::start}, 207, plain, {{2, 4'200, 5'000}}},
        {"a start freely", {2, Part::start}, 207, free, {{2, 4'217, 5'000}}},
        {"a start up to the neighbour", {2, Part::start}, -3'000, plain, {{2, 3'000, 5'000}}},
        {"freely no further", {2, Part::start}, -3'000, free, {{2, 3'000, 5'000}}},
        {"a start drawn to the neighbour", {2, Part::start}, -950, near, {{2, 3'000, 5'000}}},
        {"and not from further", {2, Part::start}, -909, near, {{2, 3'120, 5'000}}},
        {"past it when asked", {2, Part::start}, -1'410, passing, {{2, 2'600, 5'000}}},
        {"a start leaves a frame", {2, Part::start}, 9'000, plain, {{2, 4'960, 5'000}}},
        {"a start drawn to speech", {2, Part::start}, -300, heard, {{2, 3'640, 5'000}}},
        {"an end to a frame", {1, Part::end}, 95, plain, {{1, 2'000, 3'080}}},
        {"an end exactly to a start off the grid", {1, Part::end}, 990, near, {{1, 2'000, 4'010}}},
        {"an end not past it", {1, Part::end}, 5'000, plain, {{1, 2'000, 4'010}}},
        {"an end leaves a frame", {1, Part::end}, -5'000, plain, {{1, 2'000, 2'040}}},
        {"an end drawn to silence", {1, Part::end}, 250, heard, {{1, 2'000, 3'320}}},
        {"what overlaps comes to overlap no more", {2, Part::end}, 500, plain, {{2, 4'010, 5'000}}},
        {"and may overlap less", {2, Part::end}, -150, plain, {{2, 4'010, 4'840}}},
        {"a joint", {0, Part::joint, 1}, 207, plain, {{0, 1'000, 2'200}, {1, 2'200, 3'000}}},
        {"a joint leaves the later a frame", {0, Part::joint, 1}, 9'000, plain, {{0, 1'000, 2'960}, {1, 2'960, 3'000}}},
        {"and the earlier", {0, Part::joint, 1}, -9'000, plain, {{0, 1'000, 1'040}, {1, 1'040, 3'000}}},
        {"a whole cue by whole frames", {1, Part::whole}, 207, plain, {{1, 2'200, 3'200}}},
        {"a whole cue freely", {1, Part::whole}, 207, free, {{1, 2'207, 3'207}}},
        {"a whole cue up to the next", {1, Part::whole}, 5'000, plain, {{1, 3'000, 4'000}}},
        {"a whole cue not back into the one before", {1, Part::whole}, -500, plain, {{1, 2'000, 3'000}}},
        {"a whole cue over it when asked", {1, Part::whole}, -500, passing, {{1, 1'520, 2'520}}},
        {"a whole cue drawn by its end", {1, Part::whole}, 250, heard, {{1, 2'320, 3'320}}},
        {"nothing before the beginning", {0, Part::whole}, -5'000, plain, {{0, 0, 1'000}}},
        {"nor freely", {0, Part::whole}, -5'000, free, {{0, 0, 1'000}}},
        {"nor when asked", {0, Part::start}, -5'000, passing, {{0, 0, 2'000}}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(CueDrag::dragged(CueTimeline(items), row.grip, row.by, row.rules), row.expected) << row.name;
}

TEST(CueDrag, holds_both_borders_of_cues_that_share_a_frame)
{
    const CueTimeline timeline(cues({{1'000, 2'000}, {2'010, 3'000}, {3'080, 4'000}}));
    const CueDrag::Grip joint{.cue = 0, .part = Part::joint, .next = 1};
    EXPECT_EQ(CueDrag::jointAtEnd(timeline, 0, grid), joint);
    EXPECT_EQ(CueDrag::jointAtStart(timeline, 1, grid), joint);
    EXPECT_EQ(CueDrag::jointAtEnd(timeline, 1, grid), std::nullopt);
    EXPECT_EQ(CueDrag::jointAtStart(timeline, 0, grid), std::nullopt);
    EXPECT_EQ(CueDrag::jointAtEnd(timeline, 2, grid), std::nullopt);
}

TEST(CueDrag, draws_a_new_cue_where_there_is_none)
{
    const CueTimeline timeline(cues({{1'000, 2'000}, {3'010, 4'000}}));
    struct Row
    {
        const char *name;
        qint64 from;
        qint64 to;
        std::optional<CueTimeline::Room> expected;
    };
    const Row rows[] = {
        {"on frames", 2'205, 2'610, {{2'200, 2'600}}},
        {"backwards", 2'610, 2'205, {{2'200, 2'600}}},
        {"drawn to both neighbours", 2'015, 2'995, {{2'000, 3'010}}},
        {"not over them", 2'500, 9'000, {{2'520, 3'010}}},
        {"a frame", 2'500, 2'540, {{2'520, 2'560}}},
        {"less than a frame", 2'500, 2'515, std::nullopt},
        {"not out of a cue", 1'500, 2'500, std::nullopt},
    };
    for (const Row &row : rows)
        EXPECT_EQ(CueDrag::drawn(timeline, row.from, row.to, {.grid = grid, .reachMS = 20}), row.expected) << row.name;
}
