#include "core/timing/CueSnapping.h"

#include "core/timing/SpeechBorders.h"

#include <gtest/gtest.h>

using CueSnapping::Move;

namespace {

constexpr FrameGrid grid{.numerator = 25};

/// Speech from and to these times, in milliseconds, in a recording of twenty seconds.
SpeechBorders speech(const QList<std::pair<qint64, qint64>> &spans)
{
    QList<quint16> peaks(20'000 / SpeechBorders::frameMS, 0);
    for (const auto &[from, to] : spans)
        std::fill(peaks.begin() + from / SpeechBorders::frameMS, peaks.begin() + to / SpeechBorders::frameMS, 8'000);
    return SpeechBorders(peaks);
}

Subtitle cue(qint64 start, qint64 end)
{
    return {.id = 7, .start = start, .end = end, .text = QStringLiteral("好")};
}

struct Case
{
    const char *name;
    QList<std::pair<qint64, qint64>> speech;
    QList<Subtitle> cues;
    QList<Move> moves;
};

class Snapping : public testing::TestWithParam<Case>
{};

} // namespace

TEST_P(Snapping, moves_what_is_sure)
{
    const Case &given = GetParam();
    const auto [cues, moves] = CueSnapping::snapped(given.cues, speech(given.speech), grid);
    EXPECT_EQ(moves, given.moves);
    QList<Subtitle> expected = given.cues;
    for (const Move &move : given.moves) {
        expected[move.cue].start += move.startBy;
        expected[move.cue].end += move.endBy;
    }
    EXPECT_EQ(cues, expected);
}

INSTANTIATE_TEST_SUITE_P(
    cases, Snapping,
    testing::Values(
        Case{"both_borders", {{1'000, 3'000}}, {cue(1'120, 2'880)}, {{0, -120, 120}}},
        Case{"onto_the_next_frame", {{1'010, 2'950}}, {cue(1'120, 2'880)}, {{0, -120, 80}}},
        Case{"just_within", {{1'000, 3'000}}, {cue(1'200, 3'200)}, {{0, -200, -200}}},
        Case{"just_beyond", {{1'000, 3'000}}, {cue(1'201, 3'201)}, {}},
        Case{"on_its_frame_already", {{1'000, 3'000}}, {cue(1'019, 2'985)}, {}},
        Case{"between_two_onsets", {{1'000, 1'150}, {1'300, 3'000}}, {cue(1'160, 3'000)}, {}},
        Case{"much_nearer_to_one_of_two", {{1'000, 1'150}, {1'320, 3'000}}, {cue(1'280, 3'000)}, {{0, 40, 0}}},
        Case{"never_quiet", {{0, 20'000}}, {cue(100, 19'900)}, {}}, Case{"silent", {}, {cue(1'000, 2'000)}, {}},
        Case{"beyond_the_sound", {{1'000, 3'000}}, {cue(30'000, 31'000)}, {}},
        Case{"too_little_would_be_left", {{1'000, 1'150}}, {cue(840, 1'290)}, {}},
        Case{"not_into_the_one_before", {{1'000, 3'000}}, {cue(100, 1'080), cue(1'120, 3'000)}, {}},
        Case{"touching_ones_let_go",
             {{1'000, 1'900}, {2'120, 3'000}},
             {cue(1'000, 2'000), cue(2'000, 3'000)},
             {{0, 0, -80}, {1, 120, 0}}},
        Case{"not_both_into_one_gap",
             {{1'000, 1'500}, {2'040, 2'160}, {2'600, 3'000}},
             {cue(1'000, 2'000), cue(2'200, 3'000)},
             {{0, 0, 160}}},
        Case{"overlapping_ones_as_they_are",
             {{1'000, 3'000}},
             {cue(1'080, 3'000), cue(1'080, 3'080)},
             {{0, -80, 0}, {1, -80, -80}}},
        Case{"unsorted",
             {{1'000, 2'000}, {4'000, 5'000}},
             {cue(4'080, 5'000), cue(1'080, 2'000)},
             {{0, -80, 0}, {1, -80, 0}}}),
    [](const auto &row) { return row.param.name; });
