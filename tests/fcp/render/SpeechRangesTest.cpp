#include "fcp/render/SpeechRanges.h"

#include <gtest/gtest.h>

using SpeechRanges::frameMS;
using SpeechRanges::Peaks;

namespace {

constexpr quint16 loud = 1'000;

/// Sound all the while, as long as that.
Peaks sounding(qint64 seconds)
{
    return Peaks(seconds * 1'000 / frameMS, loud);
}

/// Sets a part of it, in seconds.
Peaks with(Peaks peaks, double from, double to, quint16 peak)
{
    for (auto i = qsizetype(from * 1'000 / frameMS); i < qsizetype(to * 1'000 / frameMS); ++i)
        peaks[i] = peak;
    return peaks;
}

QList<SpeechRange> divide(const Peaks &peaks)
{
    return SpeechRanges::divide(peaks, peaks.size() * frameMS);
}

} // namespace

TEST(SpeechRanges, silence_is_not_recognised)
{
    EXPECT_EQ(divide({}), QList<SpeechRange>());
    EXPECT_EQ(divide(with(sounding(300), 0, 300, SpeechRanges::silence)), QList<SpeechRange>());
    EXPECT_EQ(divide(with(with(sounding(300), 0, 300, 0), 100, 100.05, SpeechRanges::silence + 1)),
              (QList<SpeechRange>{{.begin = 99'000, .end = 101'050, .heardBegin = 99'000, .heardEnd = 101'050}}));
}

TEST(SpeechRanges, a_long_silence_parts_two_ranges_and_a_shorter_one_does_not)
{
    EXPECT_EQ(divide(with(sounding(300), 100, 159.95, 0)),
              (QList<SpeechRange>{{.begin = 0, .end = 300'000, .heardBegin = 0, .heardEnd = 300'000}}));
    EXPECT_EQ(divide(with(sounding(300), 100, 160, 0)),
              (QList<SpeechRange>{{.begin = 0, .end = 101'000, .heardBegin = 0, .heardEnd = 101'000},
                                  {.begin = 159'000, .end = 300'000, .heardBegin = 159'000, .heardEnd = 300'000}}));
}

TEST(SpeechRanges, long_sound_is_divided_where_it_is_quietest_near_even_parts)
{
    EXPECT_EQ(divide(sounding(899)).size(), 1);
    EXPECT_EQ(divide(sounding(1'200)),
              (QList<SpeechRange>{{.begin = 0, .end = 600'000, .heardBegin = 0, .heardEnd = 605'000},
                                  {.begin = 600'000, .end = 1'200'000, .heardBegin = 595'000, .heardEnd = 1'200'000}}));
    const auto border = [](const Peaks &peaks) { return divide(peaks)[0].end; };
    EXPECT_EQ(border(with(sounding(1'200), 641, 641.5, 100)), 641'250);
    EXPECT_EQ(border(with(with(sounding(1'200), 641, 641.5, 100), 570, 570.5, 90)), 570'250);
    EXPECT_EQ(border(with(sounding(1'200), 700, 710, 0)), 600'000);
}

TEST(SpeechRanges, three_hours_are_divided_without_a_gap_and_in_order)
{
    const QList<SpeechRange> ranges = divide(sounding(10'800));
    EXPECT_EQ(ranges.size(), 18);
    EXPECT_EQ(ranges.first().begin, 0);
    EXPECT_EQ(ranges.last().end, 10'800'000);
    for (qsizetype i = 1; i < ranges.size(); ++i)
        EXPECT_EQ(ranges[i].begin, ranges[i - 1].end);
}
