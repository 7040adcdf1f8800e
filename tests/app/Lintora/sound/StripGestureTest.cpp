#include "app/Lintora/sound/StripGesture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using CueDrag::Grip;
using CueDrag::Part;

namespace {

constexpr FrameGrid grid{.numerator = 25, .denominator = 1};

CueTimeline timeline(std::initializer_list<std::pair<qint64, qint64>> times)
{
    QList<Subtitle> items;
    for (const auto &[start, end] : times)
        items += Subtitle{.id = items.size() + 1, .start = start, .end = end, .text = u"字"_s};
    return CueTimeline(items);
}

/// Ten milliseconds a point, from the very beginning.
TimeScale tenths()
{
    TimeScale scale;
    scale.setWidth(1'000);
    scale.zoom(scale.msPerPoint() / 10, 0);
    return scale;
}

} // namespace

TEST(StripGesture, finds_what_lies_under_the_pointer)
{
    const CueTimeline cues =
        timeline({{1'000, 2'000}, {2'000, 3'000}, {4'000, 5'000}, {6'000, 6'120}, {7'000, 8'000}, {7'800, 9'000}});
    struct Row
    {
        const char *name;
        double x;
        std::optional<Grip> expected;
        bool single = false;
        std::optional<qsizetype> preferred = {};
    };
    const Row rows[] = {
        {"between cues", 350, std::nullopt},
        {"a cue", 450, {{2, Part::whole}}},
        {"its start from inside", 406, {{2, Part::start}}},
        {"and from outside", 394, {{2, Part::start}}},
        {"no longer from further", 393, std::nullopt},
        {"the cue beside its border", 407, {{2, Part::whole}}},
        {"its end", 503, {{2, Part::end}}},
        {"both that touch", 199, {{0, Part::joint, 1}}},
        {"both from the other side", 201, {{0, Part::joint, 1}}},
        {"one alone, by the side", 199, {{0, Part::end}}, true},
        {"the other alone", 201, {{1, Part::start}}, true},
        {"a short one in its middle", 606, {{3, Part::whole}}},
        {"a short one at its edge", 602, {{3, Part::start}}},
        {"the later of two that overlap", 790, {{5, Part::whole}}, false, 1},
        {"the one that is worked on", 790, {{4, Part::whole}}, false, 4},
    };
    for (const Row &row : rows)
        EXPECT_EQ(StripGesture::at(cues, tenths(), row.x, grid, row.single, row.preferred), row.expected) << row.name;
}

TEST(StripGesture, tells_only_of_times_that_are_others)
{
    const CueTimeline cues = timeline({{1'000, 2'000}, {2'000, 3'000}, {5'000, 6'000}});
    StripGesture gesture;
    gesture.hold({.cue = 0, .part = Part::joint, .next = 1}, 2'003);
    gesture.moveTo(2'203, cues, {.grid = grid});
    EXPECT_EQ(gesture.moved(), (QList<CueTimes>{{0, 1'000, 2'200}, {1, 2'200, 3'000}}));
    gesture.moveTo(2'006, cues, {.grid = grid});
    EXPECT_TRUE(gesture.moved().isEmpty()) << "back where it was";
    gesture.drawFrom(3'400);
    EXPECT_FALSE(gesture.drawn());
    gesture.moveTo(4'000, cues, {.grid = grid});
    EXPECT_EQ(gesture.drawn(), (CueTimeline::Room{3'400, 4'000}));
    gesture.letGo();
    EXPECT_FALSE(gesture.isHeld());
    EXPECT_FALSE(gesture.drawn());
}
