#include "core/CueShift.h"

#include "core/ConversionError.h"
#include "core/CueEditing.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr FrameGrid ntsc{.numerator = 30'000, .denominator = 1'001};

Subtitle cue(qint64 start, qint64 end)
{
    return {.id = 1, .start = start, .end = end, .text = u"好"_s};
}

} // namespace

TEST(CueShift, moves_a_time_by_milliseconds_or_by_whole_frames)
{
    constexpr qint64 farthest = std::numeric_limits<qint64>::max();
    struct Row
    {
        const char *name;
        qint64 time;
        CueShift::Distance distance;
        std::optional<qint64> expected;
    };
    const Row rows[] = {
        {"later", 1'000, {.count = 500}, 1'500},
        {"to the very beginning", 500, {.count = -500}, 0},
        {"before it", 500, {.count = -501}, std::nullopt},
        {"to the very end", CueEditing::latest - 1, {.count = 1}, CueEditing::latest},
        {"beyond it", CueEditing::latest, {.count = 1}, std::nullopt},
        {"too far for any number", 1, {.count = farthest}, std::nullopt},
        {"a frame", 1'001, {.count = 1, .grid = ntsc}, 1'034},
        {"a frame back", 1'034, {.count = -1, .grid = ntsc}, 1'001},
        {"from between two frames", 1'017, {.count = 1, .grid = ntsc}, 1'034},
        {"from nearer to the later one", 1'018, {.count = 1, .grid = ntsc}, 1'068},
        {"no frame is before the first", 0, {.count = -1, .grid = ntsc}, std::nullopt},
        {"too many frames for any number", 40, {.count = farthest, .grid = FrameGrid()}, std::nullopt},
        {"too many frames for any time", 0, {.count = farthest, .grid = FrameGrid()}, std::nullopt},
        {"out of a broken record", farthest, {.count = -farthest}, std::nullopt},
    };
    for (const Row &row : rows)
        EXPECT_EQ(CueShift::moved(row.time, row.distance), row.expected) << row.name;
}

TEST(CueShift, every_cue_goes_exactly_so_many_frames)
{
    const QList<Subtitle> cues = Generator(3).cues(200, 40);
    for (const FrameGrid grid : {FrameGrid{.numerator = 24'000, .denominator = 1'001}, FrameGrid{25, 1}, ntsc}) {
        QList<qsizetype> all;
        for (qsizetype i = 0; i < cues.size(); ++i)
            all.prepend(i);
        const QList<Subtitle> result = CueShift::moving(cues, all, {.count = 7, .grid = grid});
        for (qsizetype i = 0; i < cues.size(); ++i) {
            ASSERT_EQ(grid.frame(result[i].start), grid.frame(cues[i].start) + 7);
            ASSERT_LT(result[i].start, result[i].end);
        }
    }
}

TEST(CueShift, leaves_the_others_and_refuses_as_a_whole)
{
    const QList<Subtitle> cues{cue(100, 200), cue(1'000, 1'001), cue(2'000, 3'000)};
    EXPECT_EQ(CueShift::moving(cues, {2, 1}, {.count = -1, .grid = FrameGrid()}),
              (QList<Subtitle>{cues[0], cue(967, 968), cue(1'967, 2'967)}));
    try {
        CueShift::moving(cues, {2, 0}, {.count = -150});
        ADD_FAILURE();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"时间须在 0 到 100 小时之间。"_s);
        EXPECT_EQ(error.detail(), u"第 1 条字幕会移出这个范围。"_s);
    }
}
