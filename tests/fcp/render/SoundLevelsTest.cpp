#include "fcp/render/SoundLevels.h"

#include <gtest/gtest.h>

namespace {

using SpeechRanges::frameMS;

/// Ten seconds of frames of `room`, of which second 2 to 4 sound with `loud`.
SpeechRanges::Peaks speech(quint16 loud, quint16 room)
{
    SpeechRanges::Peaks peaks(10'000 / frameMS, room);
    for (qint64 i = 2'000 / frameMS; i < 4'000 / frameMS; ++i)
        peaks[i] = loud;
    return peaks;
}

} // namespace

TEST(SoundLevels, silence_is_what_stays_far_below_the_loud_parts)
{
    struct Row
    {
        const char *name;
        quint16 loud;
        quint16 room;
        qint64 startMS;
        qint64 endMS;
        bool isSilent;
    };
    const Row rows[] = {
        {"nothing at all", 20'000, 0, 5'000, 7'000, true},
        {"speech", 20'000, 0, 2'500, 3'500, false},
        {"speech in the middle of a long cue", 20'000, 0, 0, 9'000, false},
        {"a room 40 dB below the voice", 20'000, 200, 5'000, 7'000, true},
        {"a little louder than that", 20'000, 201, 5'000, 7'000, false},
        {"music between the words", 20'000, 8'000, 5'000, 7'000, false},
        {"a quiet recording of noise that is none", 16, 16, 2'500, 3'500, true},
        {"a neighbour's end", 20'000, 0, 3'850, 6'000, true},
        {"more than a neighbour's end", 20'000, 0, 3'700, 6'000, false},
        {"a short word is judged whole", 20'000, 0, 3'950, 4'100, false},
        {"beyond the end", 20'000, 0, 11'000, 12'000, true},
    };
    for (const Row &row : rows)
        EXPECT_EQ(SoundLevels(speech(row.loud, row.room)).isSilent(row.startMS, row.endMS), row.isSilent) << row.name;
}

TEST(SoundLevels, nothing_is_said_of_a_recording_that_nobody_heard)
{
    EXPECT_FALSE(SoundLevels().isSilent(0, 1'000));
    EXPECT_TRUE(SoundLevels({0, 0, 0, 0}).isSilent(0, 200)) << "all of it is silent";
}
