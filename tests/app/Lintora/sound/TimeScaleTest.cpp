#include "app/Lintora/sound/TimeScale.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TimeScale scale(int width, qint64 length)
{
    TimeScale scale;
    scale.setWidth(width);
    scale.setLength(length);
    return scale;
}

} // namespace

TEST(TimeScale, a_time_is_found_again_where_it_is_drawn)
{
    TimeScale strip = scale(600, 3'600'000);
    strip.centre(1'800'000, 1'801'000);
    EXPECT_DOUBLE_EQ((strip.x(1'800'000) + strip.x(1'801'000)) / 2, 300);
    strip.zoom(100, 10);
    EXPECT_EQ(strip.msPerPoint(), TimeScale::finest);
    for (const double x : {0.0, 17.0, 599.0})
        EXPECT_NEAR(strip.x(strip.time(x)), x, 0.5);
}

TEST(TimeScale, zooming_keeps_what_is_under_the_pointer)
{
    TimeScale strip = scale(600, 3'600'000);
    strip.centre(1'000'000, 1'000'000);
    const qint64 held = strip.time(450);
    strip.zoom(2, 450);
    EXPECT_EQ(strip.time(450), held);
    EXPECT_EQ(strip.msPerPoint(), TimeScale::usual / 2);
    strip.zoom(1.0 / 16, 450);
    EXPECT_EQ(strip.time(450), held);
}

TEST(TimeScale, shows_nothing_beyond_the_sound)
{
    TimeScale strip = scale(600, 60'000);
    strip.scroll(-50);
    EXPECT_EQ(strip.left(), 0);
    strip.scroll(100'000);
    EXPECT_EQ(strip.right(), 60'000);
    strip.zoom(0.001, 300);
    EXPECT_EQ(strip.left(), 0);
    EXPECT_EQ(strip.right(), 60'000);
    strip.setWidth(1'200);
    EXPECT_EQ(strip.right(), 60'000);
    strip.setLength(0);
    EXPECT_EQ(strip.right(), TimeScale::shortestMS);
}

TEST(TimeScale, turns_the_page_only_when_a_time_leaves_it)
{
    TimeScale strip = scale(600, 600'000); // 7.2 s are seen
    EXPECT_FALSE(strip.turnTo(7'199));
    EXPECT_TRUE(strip.turnTo(7'200));
    EXPECT_EQ(strip.left(), 6'300);
    EXPECT_TRUE(strip.turnTo(1'000));
    EXPECT_EQ(strip.left(), 100);
    EXPECT_TRUE(strip.turnTo(600'000));
    EXPECT_FALSE(strip.turnTo(600'000));
}

TEST(TimeScale, looks_at_the_beginning_of_what_is_wider_than_the_strip)
{
    TimeScale strip = scale(600, 600'000);
    strip.centre(100'000, 200'000);
    EXPECT_EQ(strip.left(), 99'100);
}

TEST(TimeRuler, writes_times_that_do_not_touch)
{
    for (double msPerPoint = 0.5; msPerPoint < 1'000'000; msPerPoint *= 1.3) {
        const TimeRuler::Marks marks = TimeRuler::marks(msPerPoint);
        EXPECT_GE(double(marks.written) / msPerPoint, 64) << msPerPoint;
        EXPECT_EQ(marks.written % marks.lines, 0) << msPerPoint;
    }
    EXPECT_EQ(TimeRuler::marks(12).written, 1'000);
}

TEST(TimeRuler, writes_no_more_than_is_needed)
{
    EXPECT_EQ(TimeRuler::text(62'500, 1'000), u"1:02"_s);
    EXPECT_EQ(TimeRuler::text(62'500, 500), u"1:02.5"_s);
    EXPECT_EQ(TimeRuler::text(0, 1'000), u"0:00"_s);
    EXPECT_EQ(TimeRuler::text(3'661'000, 1'000), u"1:01:01"_s);
    EXPECT_EQ(TimeRuler::text(36'000'000, 1'000), u"10:00:00"_s);
}

TEST(TimeRuler, lines_for_frames_come_with_room_for_them)
{
    const FrameGrid grid{.numerator = 25, .denominator = 1};
    EXPECT_TRUE(TimeRuler::showsFrames(8, grid));
    EXPECT_FALSE(TimeRuler::showsFrames(8.1, grid));
}
