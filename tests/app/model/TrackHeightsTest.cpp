#include "app/model/TrackHeights.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A line takes 3.2 percent at 48 points of 2160.
SubtitleTrack track(double bottomPercent, const QString &text = u"好"_s, double fontSize = 48)
{
    SubtitleTrack track;
    track.options.bottomPercent = bottomPercent;
    track.options.fontSize = fontSize;
    if (!text.isEmpty())
        track.items = {{.id = 1, .start = 0, .end = 1'000, .text = text}};
    return track;
}

TEST(TrackHeights, tracks_overlap_unless_a_line_is_between_them)
{
    EXPECT_TRUE(TrackHeights::overlapping({track(10), track(10)}));
    EXPECT_EQ(TrackHeights::overlapping({track(30), track(10), track(33)}), std::pair(qsizetype(0), qsizetype(2)));
    EXPECT_TRUE(TrackHeights::overlapping({track(13.2), track(10)}));
    EXPECT_FALSE(TrackHeights::overlapping({track(13.3), track(10)}));
    EXPECT_FALSE(TrackHeights::overlapping({track(10), track(13.3)}));
    EXPECT_FALSE(TrackHeights::overlapping({track(10), track(10, {})})) << "nothing is shown of an empty one";
    EXPECT_FALSE(TrackHeights::overlapping({track(10)}));
}

TEST(TrackHeights, the_lower_line_says_how_much_room_there_must_be)
{
    EXPECT_TRUE(TrackHeights::overlapping({track(15), track(10, u"好"_s, 96)}));
    EXPECT_FALSE(TrackHeights::overlapping({track(15, u"好"_s, 96), track(10)}));
    SubtitleTrack own = track(10);
    own.look.emplace();
    EXPECT_FALSE(TrackHeights::overlapping({track(10), own})) << "nobody knows where it stands";
}

TEST(TrackHeights, each_track_stands_above_the_lines_of_those_that_follow)
{
    using Distances = std::optional<QList<double>>;
    EXPECT_EQ(TrackHeights::stacked({track(30), track(10)}), Distances({14, 10}));
    EXPECT_EQ(TrackHeights::stacked({track(10), track(10, u"一\n二\n三"_s)}), Distances({17, 10})) << "two are meant";
    EXPECT_EQ(TrackHeights::stacked({track(10), track(10), track(0.5)}), Distances({8, 4, 0.5}));
    EXPECT_EQ(TrackHeights::stacked({track(10), track(10, u"好"_s, 430)}), Distances({39, 10}));
    EXPECT_EQ(TrackHeights::stacked({track(10), track(10, u"好"_s, 460)}), Distances()) << "beyond what is written";
    EXPECT_FALSE(TrackHeights::overlapping({track(14), track(10)})) << "what is stacked is apart";
}

} // namespace
