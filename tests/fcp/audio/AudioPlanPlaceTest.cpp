#include "fcp/audio/FCPAudioPlan.h"

#include "tests/support/Generator.h"
#include "tests/support/PlanText.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

struct Placed
{
    const char *name;
    QByteArray document;
    QStringList segments; ///< As planText writes them.
};

void PrintTo(const Placed &row, std::ostream *out)
{
    *out << row.name;
}

std::string rowName(const ::testing::TestParamInfo<Placed> &info)
{
    return info.param.name;
}

class AudioPlan_places : public ::testing::TestWithParam<Placed>
{};

TEST_P(AudioPlan_places, each_sound_where_the_timeline_has_it)
{
    EXPECT_EQ(planText(GetParam().document), GetParam().segments) << GetParam().document.toStdString();
}

// Storylines

INSTANTIATE_TEST_SUITE_P(
    a_storyline, AudioPlan_places,
    ::testing::Values(
        Placed{"of_two_clips",
               project("30s", {tag("asset-clip ref=talk offset=0s start=5s duration=10s"),
                               tag("asset-clip ref=talk offset=10s start=100s duration=20s")}),
               {u"0: talk 5 + 10"_s, u"10: talk 100 + 20"_s}},
        Placed{"with_a_gap_and_a_transition",
               project("30s", {tag("asset-clip ref=talk offset=0s duration=10s"),
                               tag("transition offset=9s duration=2s", {tag("filter-audio ref=filter")}),
                               tag("gap offset=10s duration=5s"), tag("asset-clip ref=talk offset=15s duration=5s")}),
               {u"0: talk 0 + 10"_s, u"15: talk 0 + 5"_s}},
        // 3612.5 − 3600 of the timecode, 3650 − 3600 in the file.
        Placed{"that_begins_at_one_o_clock",
               sequence("sequence format=p25 tcStart=3600s duration=20s",
                        {tag("asset-clip ref=tape offset=7225/2s start=3650s duration=5s")}),
               {u"12.5: tape 50 + 5"_s}},
        // 24 frames at 24000/1001 last 1.001 s; 12 of them 0.5005 s.
        Placed{"in_ntsc_time",
               sequence("sequence format=p2398 duration=240240/24000s",
                        {tag("asset-clip ref=talk offset=24024/24000s start=12012/24000s duration=48048/24000s")}),
               {u"1.001: talk 0.5005 + 2.002"_s}},
        Placed{"of_times_that_no_product_of_64_bits_holds",
               project("20s", {tag("asset-clip ref=talk offset=3000000000000/720000000000s "
                                   "start=61847735047/1000000000s duration=7200000/720000s")}),
               {u"4.16666667: talk 61.847735 + 10"_s}},
        Placed{"whose_later_items_state_no_offset",
               sequence("sequence format=p25 tcStart=100s duration=30s",
                        {tag("asset-clip ref=talk duration=10s"), tag("transition duration=2s"), tag("gap duration=3s"),
                         tag("asset-clip ref=talk duration=5s")}),
               {u"0: talk 0 + 10"_s, u"13: talk 0 + 5"_s}},
        // What sounds not still takes its place: a silent asset of 10 s, then a disabled clip of the tape's 100 s.
        Placed{"whose_silent_items_state_no_length",
               project("900s",
                       {tag("asset-clip ref=still"), tag("asset-clip ref=talk duration=5s"),
                        tag("asset-clip ref=tape start=3600s enabled=0"), tag("asset-clip ref=talk duration=5s")},
                       {tag("asset id=still duration=10s hasVideo=1 hasAudio=0",
                            {tag("media-rep kind=original-media src=file:///m/still.mov")})}),
               {u"10: talk 0 + 5"_s, u"115: talk 0 + 5"_s}},
        Placed{"whose_clip_runs_past_its_end",
               project("12s", {tag("asset-clip ref=talk offset=4s duration=10s")}),
               {u"4: talk 0 + 8"_s}},
        Placed{"whose_clip_begins_before_it",
               project("12s", {tag("asset-clip ref=talk offset=-4s duration=10s")}),
               {u"0: talk 4 + 6"_s}},
        Placed{"of_an_audition_with_its_place",
               project("30s", {tag("audition offset=6s", {tag("asset-clip ref=talk offset=99s start=1s duration=2s"),
                                                          tag("asset-clip ref=music offset=6s duration=5s")})}),
               {u"6: talk 1 + 2"_s}}),
    rowName);

// Files

INSTANTIATE_TEST_SUITE_P(
    a_file, AudioPlan_places,
    ::testing::Values(Placed{"that_ends_before_its_clip",
                             project("30s", {tag("asset-clip ref=music offset=2s start=295s duration=10s")}),
                             {u"2: music 295 + 5"_s}},
                      // The tape begins at 3600: of 3598 … 3608 the first 2 s do not exist.
                      Placed{"that_begins_after_its_clip",
                             project("30s", {tag("asset-clip ref=tape offset=2s start=3598s duration=10s")}),
                             {u"4: tape 0 + 8"_s}},
                      Placed{"of_no_stated_length",
                             project("30s", {tag("asset-clip ref=endless offset=2s start=5000s duration=10s")}),
                             {u"2: endless 5000 + 10"_s}},
                      Placed{"whose_clip_states_no_length",
                             project("900s", {tag("asset-clip ref=tape start=3600s")}),
                             {u"0: tape 0 + 100"_s}}),
    rowName);

// Connected clips and storylines. The host's own time 105 is its 5th second, so 15 on the timeline.

QByteArray connected(const QList<Tag> &items)
{
    return project("60s", {tag("asset-clip ref=mute offset=10s start=100s duration=20s", items)});
}

INSTANTIATE_TEST_SUITE_P(
    a_connected, AudioPlan_places,
    ::testing::Values(Placed{"clip",
                             connected({tag("asset-clip ref=talk lane=1 offset=105s start=7s duration=3s")}),
                             {u"15: talk 7 + 3"_s}},
                      Placed{"clip_that_begins_before_its_host",
                             connected({tag("asset-clip ref=talk lane=-1 offset=96s start=7s duration=3s")}),
                             {u"6: talk 7 + 3"_s}},
                      Placed{"clip_that_outlasts_its_host",
                             connected({tag("asset-clip ref=talk lane=1 offset=115s start=7s duration=30s")}),
                             {u"25: talk 7 + 30"_s}},
                      // 105 lies at 15; the middle clip's own 43 is its 3rd second, at 18.
                      Placed{"clip_on_a_connected_clip",
                             connected({tag("video ref=picture lane=1 offset=105s start=40s duration=10s",
                                            {tag("asset-clip ref=talk lane=1 offset=43s duration=2s")})}),
                             {u"18: talk 0 + 2"_s}},
                      Placed{"storyline",
                             connected({tag("spine lane=1 offset=104s",
                                            {tag("asset-clip ref=talk offset=0s start=7s duration=3s"),
                                             tag("gap offset=3s duration=2s"),
                                             tag("asset-clip ref=talk offset=5s duration=3s")})}),
                             {u"14: talk 7 + 3"_s, u"19: talk 0 + 3"_s}},
                      Placed{"clip_on_a_title_on_a_gap",
                             project("60s", {tag("gap offset=10s start=3600s duration=20s",
                                                 {tag("title ref=title lane=1 offset=3605s start=50s duration=5s",
                                                      {tag("asset-clip ref=talk lane=1 offset=52s duration=1s")})})}),
                             {u"17: talk 0 + 1"_s}},
                      // Some writers leave the lane out: what is content of a host is cut to it.
                      Placed{"clip_without_a_lane",
                             connected({tag("asset-clip ref=talk offset=118s start=7s duration=30s")}),
                             {u"28: talk 7 + 2"_s}},
                      Placed{"audition",
                             connected({tag("audition lane=1 offset=105s", {tag("asset-clip ref=talk duration=3s")})}),
                             {u"15: talk 0 + 3"_s}}),
    rowName);

// Containers

INSTANTIATE_TEST_SUITE_P(
    a_clip, AudioPlan_places,
    ::testing::Values(
        // Its window 110 … 120 lies at 5 … 15; the audio's own 3610 at its 100, so 3620 at 110.
        Placed{"with_trimmed_audio",
               project("60s", {tag("clip offset=5s start=110s duration=10s",
                                   {tag("audio ref=tape offset=100s start=3610s duration=80s")})}),
               {u"5: tape 20 + 10"_s}},
        Placed{"with_audio_shorter_than_itself",
               project("60s", {tag("clip offset=5s start=110s duration=10s",
                                   {tag("audio ref=tape offset=112s start=3610s duration=3s")})}),
               {u"7: tape 10 + 3"_s}},
        Placed{"with_audio_below_its_picture",
               project("60s", {tag("clip offset=5s start=110s duration=10s",
                                   {tag("video ref=picture offset=100s start=50s duration=80s",
                                        {tag("audio ref=talk lane=-1 offset=50s start=300s duration=80s"),
                                         tag("audio ref=music lane=-2 offset=62s duration=2s")})})}),
               {u"5: talk 310 + 10"_s, u"7: music 0 + 2"_s}},
        Placed{"of_pictures_only",
               project("60s", {tag("clip offset=5s duration=10s", {tag("video ref=talk duration=10s")}),
                               tag("asset-clip ref=talk offset=15s duration=1s")}),
               {u"15: talk 0 + 1"_s}},
        Placed{"that_does_not_cut_what_hangs_on_it",
               project("60s", {tag("clip offset=5s start=100s duration=10s",
                                   {tag("video ref=picture offset=100s duration=10s"),
                                    tag("asset-clip ref=talk lane=1 offset=108s duration=30s")})}),
               {u"13: talk 0 + 30"_s}},
        // Content: a camera clip at 0, external sound 2 s into it. The window 1 … 6 lies at 20 … 25.
        Placed{"synchronized",
               project("60s", {tag("sync-clip offset=20s start=1s duration=5s",
                                   {tag("spine", {tag("asset-clip ref=mute offset=0s start=50s duration=30s",
                                                      {tag("asset-clip ref=talk lane=-1 offset=52s duration=30s")})}),
                                    tag("asset-clip ref=music lane=1 offset=3s duration=10s")})}),
               {u"21: talk 0 + 4"_s, u"22: music 0 + 10"_s}},
        Placed{"synchronized_with_a_timecode",
               project("60s", {tag("sync-clip offset=20s start=3602s duration=5s tcStart=3600s",
                                   {tag("spine", {tag("asset-clip ref=talk offset=0s duration=30s")})})}),
               {u"20: talk 2 + 5"_s}}),
    rowName);

// Split edits

INSTANTIATE_TEST_SUITE_P(
    a_split, AudioPlan_places,
    ::testing::Values(
        // The picture begins at the clip's 100, its sound at 98: two seconds earlier.
        Placed{"edit_whose_sound_leads",
               project("60s", {tag("asset-clip ref=talk offset=10s start=100s duration=10s audioStart=98s "
                                   "audioDuration=12s")}),
               {u"8: talk 98 + 12"_s}},
        Placed{"edit_whose_sound_trails",
               project("60s", {tag("asset-clip ref=talk offset=10s start=100s duration=10s audioStart=100s "
                                   "audioDuration=13s")}),
               {u"10: talk 100 + 13"_s}},
        Placed{"edit_of_a_container",
               project("60s", {tag("clip offset=10s start=100s duration=10s audioStart=97s audioDuration=5s",
                                   {tag("audio ref=talk offset=0s duration=900s")})}),
               {u"7: talk 97 + 5"_s}},
        Placed{"edit_without_sound",
               project("60s", {tag("asset-clip ref=talk offset=0s duration=10s audioStart=0s audioDuration=0s"),
                               tag("asset-clip ref=talk offset=10s duration=1s")}),
               {u"10: talk 0 + 1"_s}}),
    rowName);

// Compound clips. "inner" begins at timecode 50: talk at 50 … 60, music connected at 58 … 78.

Tag inner()
{
    return compound("inner", "sequence format=p25 tcStart=50s duration=10s",
                    {tag("asset-clip ref=talk offset=50s duration=10s",
                         {tag("asset-clip ref=music lane=1 offset=8s duration=20s")})});
}

/// Shows 2 … 9 of its own time, which lies at "inner" 52 … 59.
Tag outer()
{
    return compound("outer", "sequence format=p25 duration=20s",
                    {tag("ref-clip ref=inner offset=0s start=50s duration=9s")});
}

INSTANTIATE_TEST_SUITE_P(
    a_compound_clip, AudioPlan_places,
    ::testing::Values(Placed{"of_which_a_part_is_used",
                             project("60s", {tag("ref-clip ref=inner offset=20s start=53s duration=6s")}, {inner()}),
                             {u"20: talk 3 + 6"_s, u"25: music 0 + 1"_s}},
                      Placed{"in_a_compound_clip",
                             project("60s", {tag("ref-clip ref=outer offset=20s start=2s duration=30s")},
                                     {inner(), outer()}),
                             {u"20: talk 2 + 7"_s, u"26: music 0 + 1"_s}},
                      Placed{"shown_twice",
                             project("60s",
                                     {tag("ref-clip ref=inner offset=0s start=50s duration=2s"),
                                      tag("ref-clip ref=inner offset=2s start=51s duration=2s")},
                                     {inner()}),
                             {u"0: talk 0 + 2"_s, u"2: talk 1 + 2"_s}},
                      Placed{"that_does_not_cut_what_hangs_on_it",
                             project("60s",
                                     {tag("ref-clip ref=inner offset=20s start=50s duration=5s",
                                          {tag("asset-clip ref=tape lane=1 offset=54s start=3600s duration=9s")})},
                                     {inner()}),
                             {u"20: talk 0 + 5"_s, u"24: tape 0 + 9"_s}},
                      Placed{"whose_sound_leads",
                             project("60s",
                                     {tag("ref-clip ref=inner offset=20s start=53s duration=3s audioStart=51s "
                                          "audioDuration=4s")},
                                     {inner()}),
                             {u"18: talk 1 + 4"_s}}),
    rowName);

// Conformed clips: 25 frames on a timeline of 24 play at 24/25 of their pace.

QByteArray conformed(QByteArrayView description, const QList<Tag> &items)
{
    return sequence("sequence format=p24 duration=600s",
                    {tag(description, QList<Tag>{tag("conform-rate srcFrameRate=25")} + items)});
}

INSTANTIATE_TEST_SUITE_P(
    a_conformed, AudioPlan_places,
    ::testing::Values(
        // One second too short by 1/25 s, which is less than a frame of 1/24 s.
        Placed{"clip_that_stays_within_a_frame",
               conformed("asset-clip ref=talk offset=10s start=100s duration=1s", {}),
               {u"10: talk 100 + 1"_s}},
        // The host's own 148 is 48 s of its media, 50 s of the timeline. What hangs there keeps its own pace.
        Placed{"host",
               conformed("asset-clip ref=mute offset=10s start=100s duration=200s",
                         {tag("asset-clip ref=talk lane=1 offset=148s duration=60s"),
                          tag("spine lane=2 offset=196s", {tag("asset-clip ref=music offset=3s duration=60s")})}),
               {u"60: talk 0 + 60"_s, u"113: music 0 + 60"_s}},
        // Its content runs slower: the audio's 24 s begin 25 s into the clip, and are refused unless short.
        Placed{"container",
               conformed("clip offset=10s start=100s duration=100s",
                         {tag("audio ref=talk offset=124s start=7s duration=1/2s")}),
               {u"35: talk 7 + 0.520833333"_s}},
        Placed{
            "clip_whose_scaling_is_off",
            sequence("sequence format=p24 duration=600s", {tag("asset-clip ref=talk offset=10s duration=500s",
                                                               {tag("conform-rate scaleEnabled=0 srcFrameRate=25")})}),
            {u"10: talk 0 + 500"_s}}),
    rowName);

/// A storyline of clips, connected clips and gaps, laid out at random from `begin`.
QList<Tag> randomStoryline(Generator &random, qint64 begin)
{
    QList<Tag> items;
    qint64 offset = begin;
    for (qint64 left = random.number(1, 8); left > 0; --left) {
        const qint64 duration = random.number(1, 40);
        const QByteArray place = " offset=" + QByteArray::number(offset) +
                                 "/3s start=" + QByteArray::number(random.number(0, 50)) +
                                 "s duration=" + QByteArray::number(duration) + "/3s";
        const QByteArray name = random.chance(70) ? QByteArray("asset-clip ref=talk") : QByteArray("gap");
        const Tag hanging =
            tag("asset-clip ref=music lane=1 duration=1s offset=" + QByteArray::number(random.number(0, 60)) + 's');
        items += tag(name + place, random.chance(40) ? QList<Tag>{hanging} : QList<Tag>());
        offset += duration;
    }
    return items;
}

TEST(AudioPlan, a_compound_clip_sounds_as_its_content_does_in_its_place)
{
    Generator random(20);
    for (int round = 0; round < 200; ++round) {
        const qint64 start = random.number(0, 5'000);
        const QByteArray timecode = QByteArray::number(start) + "/3s";
        const QList<Tag> items = randomStoryline(random, start);
        const auto plain = sequence("sequence format=p25 duration=200s tcStart=" + timecode, items);
        const Tag media = compound("c", "sequence format=p25 tcStart=" + timecode, items);
        const auto nested = project("200s", {tag("ref-clip ref=c offset=0s duration=200s start=" + timecode)}, {media});
        ASSERT_EQ(planText(nested), planText(plain)) << plain.toStdString();
    }
}

} // namespace
