#include "fcp/audio/FCPAudioPlan.h"

#include "core/json/JsonWriter.h"
#include "tests/support/PlanText.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

const Tag talk = tag("asset-clip ref=talk offset=0s duration=9s");

FCPAudioPlan planOf(const QByteArray &document)
{
    return FCPAudioPlan::parse(document);
}

// Where the project stands

TEST(FCPAudioPlan, finds_the_project_in_every_place_of_a_document)
{
    const Tag project = tag("project name=Film", {tag("sequence format=p25 duration=9s", {tag("spine", {talk})})});
    const Tag clip = tag("asset-clip ref=music duration=9s");
    for (const QList<Tag> &content :
         {QList<Tag>{project}, QList<Tag>{tag("event", {clip, project})},
          QList<Tag>{tag("library", {tag("event", {clip}), tag("event", {project, clip})})}})
        EXPECT_EQ(planText(selection(content)), QStringList{u"0: talk 0 + 9"_s});
}

TEST(FCPAudioPlan, reads_documents_of_version_1_2)
{
    const QByteArray document =
        "<fcpxml version='1.2'><project name='Old'><resources>"
        "<format id='r1' frameDuration='100/2500s' width='1280' height='720'/>"
        "<asset id='r2' src='file://localhost/m/talk.mov' duration='60s' hasVideo='1' hasAudio='1'/></resources>"
        "<sequence duration='20s' format='r1'><spine><clip offset='0s' duration='20s'><video ref='r2' duration='20s'>"
        "<audio lane='-1' ref='r2' duration='20s'/></video></clip></spine></sequence></project></fcpxml>";
    EXPECT_EQ(planText(document), QStringList{u"0: talk 0 + 20"_s});
    EXPECT_EQ(planOf(document).segments.value(0).url, QUrl(u"file:///m/talk.mov"_s));
    ASSERT_TRUE(planOf(document).settings);
    EXPECT_EQ(planOf(document).settings->height, 720);
}

// Files

TEST(FCPAudioPlan, takes_the_original_before_the_proxy_and_either_before_none)
{
    const auto file = [](const QList<Tag> &representations) {
        const Tag asset = tag("asset id=a duration=9s hasAudio=1", representations);
        return planOf(project("9s", {tag("asset-clip ref=a duration=9s")}, {asset})).segments.value(0).url.path();
    };
    const Tag original = tag("media-rep kind=original-media src=file:///m/original.mov");
    const Tag proxy = tag("media-rep kind=proxy-media src=file:///m/proxy.mov");
    EXPECT_EQ(file({proxy, original}), u"/m/original.mov"_s);
    EXPECT_EQ(file({tag("media-rep src="), proxy}), u"/m/proxy.mov"_s);
}

TEST(FCPAudioPlan, reads_file_names_as_final_cut_pro_writes_them)
{
    const auto path = [](const QByteArray &source) {
        const Tag asset = tag("asset id=a duration=9s hasAudio=1 src=" + source);
        return planOf(project("9s", {tag("asset-clip ref=a duration=9s")}, {asset}))
            .segments.value(0)
            .url.toLocalFile();
    };
    EXPECT_EQ(path("file:///m/a+b%20(1),~!&amp;@%23.mov"), u"/m/a+b (1),~!&@#.mov"_s);
    EXPECT_EQ(path("file:///m/%E8%AE%BF%E8%B0%88.mov"), u"/m/访谈.mov"_s);
    EXPECT_EQ(path("file:///m/e%CC%81.mov"), u"/m/e\u0301.mov"_s) << "a decomposed name stays decomposed";
    EXPECT_EQ(path("/m/a.mov"), u"/m/a.mov"_s);
}

// The record

TEST(FCPAudioPlan, carries_the_settings_of_the_project)
{
    const FCPAudioPlan plan = planOf(sequence("sequence format=p2398 duration=20s", {talk}));
    EXPECT_EQ(plan.name, u"Film"_s);
    EXPECT_EQ(plan.duration, 20);
    ASSERT_TRUE(plan.settings);
    EXPECT_EQ(plan.settings->rate.label, u"23.976"_s);
    EXPECT_EQ(plan.settings->width, 1080);
    EXPECT_EQ(plan.settings->fontSize, 1920.0 / 45);
    EXPECT_EQ(plan.settings->name, u"Film_字幕版"_s);
}

TEST(FCPAudioPlan, has_no_settings_where_the_rate_is_unknown_or_unsupported_and_sounds_all_the_same)
{
    for (const char *const format : {"unrated", "p48", "none", "talk", "broken"}) {
        const FCPAudioPlan plan = planOf(sequence(QByteArray("sequence duration=20s format=") + format, {talk},
                                                  {tag("format id=broken frameDuration=25")}));
        EXPECT_FALSE(plan.settings) << format;
        EXPECT_EQ(planText(plan), QStringList{u"0: talk 0 + 9"_s}) << format;
    }
}

TEST(FCPAudioPlan, sorts_segments_by_offset_and_keeps_the_order_of_equal_ones)
{
    EXPECT_EQ(planText(project("60s", {tag("asset-clip ref=talk offset=20s duration=5s"),
                                       tag("gap offset=0s duration=20s",
                                           {tag("asset-clip ref=music lane=2 offset=20s duration=5s"),
                                            tag("asset-clip ref=music lane=1 offset=3s duration=5s")})})),
              QStringList({u"3: music 0 + 5"_s, u"20: talk 0 + 5"_s, u"20: music 0 + 5"_s}));
}

TEST(FCPAudioPlan, lasts_as_long_as_its_clips_where_the_sequence_does_not_tell)
{
    const Tag gap = tag("gap offset=0s duration=30s", {tag("asset-clip ref=talk lane=1 offset=25s duration=9s")});
    EXPECT_EQ(planOf(sequence("sequence format=p25", {gap})).duration, 34);
    EXPECT_EQ(planOf(sequence("sequence format=p25", {gap, tag("gap duration=10s")})).duration, 40);
}

TEST(FCPAudioPlan, is_written_as_json_with_sorted_keys)
{
    const FCPAudioPlan plan{.name = u"Film"_s,
                            .segments = {{.url = QUrl::fromLocalFile(u"/m/访 谈.mov"_s),
                                          .fileStart = 0.5,
                                          .offset = 1.25,
                                          .duration = 2,
                                          .gain = 0.5}},
                            .duration = 9,
                            .settings = std::nullopt,
                            .hasAudioEffects = true,
                            .skippedRetimedAudio = {u"fast"_s}};
    EXPECT_EQ(jsonBytes([&](JsonWriter &json) { writeAudioPlan(json, plan); }),
              R"({"duration":9,"hasAudioEffects":true,"name":"Film",)"
              R"("retimeNotice":"1 段变速片段自身的音频，正常音轨照常识别。",)"
              R"("segments":[{"duration":2,"fileStart":0.5,"gain":0.5,"offset":1.25,)"
              R"("url":"file:///m/%E8%AE%BF%20%E8%B0%88.mov"}],"skippedRetimedAudio":["fast"]})");
}

// Selections of clips

TEST(FCPAudioPlan, of_one_clip_begins_with_it)
{
    const FCPAudioPlan plan =
        planOf(selection({tag("asset-clip ref=tape name=Tape offset=500s start=3610s duration=20s",
                              {tag("asset-clip ref=talk lane=1 offset=3615s duration=90s")})}));
    EXPECT_EQ(planText(plan), QStringList({u"0: tape 10 + 20"_s, u"5: talk 0 + 15"_s}));
    EXPECT_EQ(plan.name, u"Tape"_s);
    EXPECT_EQ(plan.duration, 20);
    ASSERT_TRUE(plan.settings) << "the asset's format is the clip's";
    EXPECT_EQ(plan.settings->rate.label, u"25"_s);
}

TEST(FCPAudioPlan, of_one_compound_clip_reads_what_is_in_it)
{
    const Tag media = compound("c", "sequence format=p2398 tcStart=10s duration=40s",
                               {tag("asset-clip ref=talk offset=10s duration=40s")});
    const FCPAudioPlan plan = planOf(selection({tag("ref-clip ref=c start=15s")}, {media}));
    EXPECT_EQ(planText(plan), QStringList{u"0: talk 5 + 35"_s});
    ASSERT_TRUE(plan.settings);
    EXPECT_EQ(plan.settings->rate.label, u"23.976"_s);
}

TEST(FCPAudioPlan, of_several_clips_keeps_the_distances_of_their_offsets)
{
    const FCPAudioPlan plan =
        planOf(selection({tag("asset-clip ref=talk name=A offset=100s duration=10s format=p25"),
                          tag("asset-clip ref=music offset=115s start=3s duration=5s format=p24")}));
    EXPECT_EQ(planText(plan), QStringList({u"0: talk 0 + 10"_s, u"15: music 3 + 5"_s}));
    EXPECT_EQ(plan.name, u"A"_s);
    EXPECT_EQ(plan.duration, 20);
    EXPECT_FALSE(plan.settings) << "two formats do not tell which timeline they come from";
}

TEST(FCPAudioPlan, reads_clips_of_an_event_that_holds_no_project)
{
    EXPECT_EQ(planText(selection({tag("library", {tag("event", {tag("asset-clip ref=talk start=4s duration=9s")})})})),
              QStringList{u"0: talk 4 + 9"_s});
}

} // namespace
