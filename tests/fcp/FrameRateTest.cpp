#include "fcp/FrameRate.h"

#include "core/FrameGrid.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <limits>

TEST(FrameRate, the_picker_has_eight_rates_in_order)
{
    QStringList labels;
    for (const FrameRate &rate : FrameRate::all())
        labels += rate.label;
    EXPECT_EQ(labels.join(u' ').toStdString(), "23.976 24 25 29.97 30 50 59.94 60");
}

TEST(FrameRate, frames_of_known_times)
{
    const auto rates = FrameRate::all();
    for (const FrameRate &rate : rates)
        EXPECT_EQ(rate.frame(0), 0);
    EXPECT_EQ(rates[0].frame(1'001), 24);
    EXPECT_EQ(rates[2].frame(20), 1);
    EXPECT_EQ(rates[2].frame(19), 0);
    EXPECT_EQ(rates[2].frame(-20), -1);
    EXPECT_EQ(FrameRate({.label = {}, .numerator = 60'000, .denominator = 1}).frame(std::numeric_limits<qint64>::max()),
              std::nullopt);
    EXPECT_EQ(FrameRate({.label = {}, .numerator = 0, .denominator = 0}).frame(0), std::nullopt);
}

TEST(FrameRate, the_nearest_frame_halves_later_for_every_time_of_a_day)
{
    Generator generator(5);
    for (const FrameRate &rate : FrameRate::all()) {
        for (int i = 0; i < 100'000; ++i) {
            const qint64 time = generator.number(0, 24 * 3'600'000);
            const qint64 twiceDivisor = 2 * rate.denominator * 1'000;
            // Exactly, in integers: (2x + 1) / 2 rounded down.
            const qint64 expected = (2 * time * rate.numerator + rate.denominator * 1'000) / twiceDivisor;
            ASSERT_EQ(rate.frame(time), expected) << rate.label.toStdString() << " at " << time;
        }
    }
}

TEST(FrameRate, times_are_never_reduced)
{
    const auto rates = FrameRate::all();
    EXPECT_EQ(rates[4].time(90), "90/30s");
    EXPECT_EQ(rates[0].time(1), "1001/24000s");
    EXPECT_EQ(rates[4].time(0), "0/30s");
    EXPECT_EQ(rates[6].time(3), "3003/60000s");
    EXPECT_EQ(rates[2].time(-7), "-7/25s");
    EXPECT_THROW(rates[0].time(std::numeric_limits<qint64>::max() / 1'000), RationalOverflow);
}

TEST(FrameRate, agrees_with_the_grid_of_cues)
{
    for (const FrameRate &rate : FrameRate::all()) {
        const FrameGrid grid{.numerator = rate.numerator, .denominator = rate.denominator};
        for (qint64 ms = 0; ms < 360'000'000; ms = ms * 9 / 8 + 1) {
            ASSERT_EQ(grid.frame(ms), rate.frame(ms)) << ms;
            ASSERT_EQ(rate.frame(grid.snapped(ms)), rate.frame(ms)) << ms;
        }
    }
}
