#include "fcp/audio/FCPAudioPlan.h"

#include "fcp/audio/ClipVolume.h"
#include "tests/support/PlanText.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

/// A clip that always sounds, so that a plan stands while the one before it is silent.
const QStringList nothingElse{u"50: music 0 + 1"_s};

QStringList beside(const Tag &clip, const QList<Tag> &more = {})
{
    return planText(project("60s", {clip, tag("asset-clip ref=music offset=50s duration=1s")}, more));
}

FCPAudioPlan plan(const QList<Tag> &items, const QList<Tag> &more = {})
{
    return FCPAudioPlan::parse(project("60s", items, more));
}

const Tag compoundOfTalk = compound("c", "sequence format=p25", {tag("asset-clip ref=talk offset=0s duration=60s")});

// Silence

struct Silent
{
    const char *name;
    Tag clip;
};

void PrintTo(const Silent &row, std::ostream *out)
{
    *out << row.name;
}

class AudioPlan_leaves_out : public ::testing::TestWithParam<Silent>
{};

TEST_P(AudioPlan_leaves_out, what_makes_no_sound)
{
    EXPECT_EQ(beside(GetParam().clip, {compoundOfTalk}), nothingElse);
}

INSTANTIATE_TEST_SUITE_P(
    parts, AudioPlan_leaves_out,
    ::testing::Values(
        Silent{"a_disabled_clip_with_what_hangs_on_it", tag("asset-clip ref=talk offset=0s duration=9s enabled=0",
                                                            {tag("asset-clip ref=talk lane=1 offset=0s duration=5s")})},
        Silent{"a_disabled_multicam_clip", tag("mc-clip ref=none offset=0s duration=9s enabled=0")},
        Silent{"a_disabled_clip_of_broken_times", tag("asset-clip ref=none offset=x duration=y enabled=0")},
        Silent{"a_picture_only_use", tag("asset-clip ref=talk offset=0s duration=9s srcEnable=video")},
        Silent{"a_picture_only_use_of_a_compound", tag("ref-clip ref=c offset=0s duration=9s srcEnable=video")},
        Silent{"a_picture_only_use_of_a_multicam_clip", tag("mc-clip ref=none offset=0s duration=9s srcEnable=video")},
        Silent{"an_asset_without_sound", tag("asset-clip ref=mute offset=0s duration=9s")},
        Silent{"an_asset_that_names_only_pictures", tag("asset-clip ref=picture offset=0s duration=9s")},
        Silent{"a_video_of_an_asset_with_sound", tag("video ref=talk offset=0s duration=9s")},
        Silent{"a_video_of_nothing", tag("video ref=none offset=0s duration=9s")},
        Silent{"disabled_content",
               tag("clip offset=0s duration=9s", {tag("audio ref=talk offset=0s duration=9s enabled=0")})},
        Silent{"a_clip_whose_only_component_is_off",
               tag("asset-clip ref=talk offset=0s duration=9s", {tag("audio-channel-source srcCh=1 active=0")})},
        Silent{"a_clip_all_of_whose_components_are_off",
               tag("ref-clip ref=c offset=0s duration=9s",
                   {tag("audio-role-source role=dialogue enabled=0"), tag("audio-role-source role=music active=0")})},
        Silent{"the_alternatives_of_an_audition", tag("audition offset=0s", {tag("video ref=picture duration=9s"),
                                                                             tag("asset-clip ref=talk duration=9s")})},
        Silent{"a_generated_tone", tag("audio ref=filter offset=0s duration=9s")},
        Silent{"an_empty_audition", tag("audition offset=0s")},
        Silent{"markers_and_notes",
               tag("gap offset=0s duration=9s", {tag("marker start=0s duration=1s value=a"), tag("note")})}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(AudioPlan, a_clip_sounds_when_one_of_its_components_is_on)
{
    EXPECT_EQ(planText(project(
                  "60s", {tag("asset-clip ref=talk offset=0s duration=9s",
                              {tag("audio-channel-source srcCh=1 active=0"), tag("audio-channel-source srcCh=2")})})),
              QStringList{u"0: talk 0 + 9"_s});
}

TEST(AudioPlan, a_picture_only_use_keeps_what_hangs_on_it)
{
    EXPECT_EQ(beside(tag("mc-clip ref=none offset=10s start=100s duration=9s srcEnable=video",
                         {tag("asset-clip ref=talk lane=-1 offset=101s duration=5s")})),
              QStringList({u"11: talk 0 + 5"_s, u"50: music 0 + 1"_s}));
}

TEST(AudioPlan, a_synchronized_clip_can_switch_off_either_of_its_sources)
{
    const auto segments = [](const char *source) {
        return planText(
            project("60s", {tag("sync-clip offset=0s duration=9s",
                                {tag("spine", {tag("asset-clip ref=talk offset=0s duration=9s",
                                                   {tag("asset-clip ref=music lane=-1 offset=1s duration=5s")})}),
                                 tag(QByteArray("sync-source sourceID=") + source,
                                     {tag("audio-role-source role=dialogue.dialogue-1 active=0")})})}));
    };
    EXPECT_EQ(segments("storyline"), QStringList{u"1: music 0 + 5"_s});
    EXPECT_EQ(segments("connected"), QStringList{u"0: talk 0 + 9"_s});
}

TEST(AudioPlan, a_role_that_is_switched_off_is_silent)
{
    const QList<Tag> story{
        tag("asset-clip ref=talk audioRole=dialogue offset=0s duration=9s",
            {tag("asset-clip ref=tape lane=1 audioRole=music.score offset=1s start=3600s duration=5s"),
             tag("asset-clip ref=endless lane=2 offset=2s duration=5s")}),
        tag("asset-clip ref=music offset=9s duration=9s",
            {tag("audio-channel-source srcCh=1 role=music.score"), tag("audio-channel-source srcCh=2 role=effects")})};
    const auto compoundWith = [&](const QList<Tag> &roles) {
        return planText(project("60s", {tag("ref-clip ref=c offset=0s duration=20s", roles)},
                                {compound("c", "sequence format=p25", story)}));
    };
    const Tag dialogueOn = tag("audio-role-source role=dialogue.dialogue-1");
    const Tag scoreOff = tag("audio-role-source role=music.score active=0");
    const Tag effectsOff = tag("audio-role-source role=effects.effects-1 enabled=0");
    // What tells no role, and what has another one that is on, goes on sounding.
    EXPECT_EQ(compoundWith({dialogueOn, scoreOff}),
              QStringList({u"0: talk 0 + 9"_s, u"2: endless 0 + 5"_s, u"9: music 0 + 9"_s}));
    EXPECT_EQ(compoundWith({dialogueOn, scoreOff, effectsOff}),
              QStringList({u"0: talk 0 + 9"_s, u"2: endless 0 + 5"_s}));
    EXPECT_EQ(compoundWith({tag("audio-role-source role=music.other active=0"), dialogueOn}).size(), 4);
    const auto synchronized = [&](const char *source) {
        return planText(project("60s", {tag("sync-clip offset=0s duration=20s",
                                            {tag("spine", story), tag(source, {dialogueOn, scoreOff, effectsOff})})}));
    };
    EXPECT_EQ(synchronized("sync-source sourceID=storyline"),
              QStringList({u"0: talk 0 + 9"_s, u"1: tape 0 + 5"_s, u"2: endless 0 + 5"_s}));
    EXPECT_EQ(synchronized("sync-source sourceID=connected"),
              QStringList({u"0: talk 0 + 9"_s, u"2: endless 0 + 5"_s, u"9: music 0 + 9"_s}));
}

// Volume

struct Level
{
    const char *name;
    Tag volume;
    double decibels;
};

void PrintTo(const Level &row, std::ostream *out)
{
    *out << row.name;
}

Tag animated(const QList<Tag> &keyframes)
{
    return tag("adjust-volume", {tag("param name=amount", {tag("keyframeAnimation", keyframes)})});
}

class AudioPlan_takes_a_level : public ::testing::TestWithParam<Level>
{};

TEST_P(AudioPlan_takes_a_level, from_decibels)
{
    const FCPAudioPlan found =
        plan({tag("asset-clip ref=talk offset=0s start=100s duration=10s", {GetParam().volume})});
    EXPECT_DOUBLE_EQ(found.segments.value(0).gain, std::pow(10.0, GetParam().decibels / 20));
}

INSTANTIATE_TEST_SUITE_P(
    that, AudioPlan_takes_a_level,
    ::testing::Values(
        Level{"is_lower", tag("adjust-volume amount=-6dB"), -6},
        Level{"is_higher", tag("adjust-volume amount=3.5dB"), 3.5},
        Level{"is_the_highest", tag("adjust-volume amount=24dB"), 24},
        Level{"is_too_high", tag("adjust-volume amount=24.1dB"), 24},
        Level{"is_the_lowest", tag("adjust-volume amount=-96dB"), -96},
        Level{"is_too_low", tag("adjust-volume amount=-96.1dB"), -96},
        Level{"is_silence", tag("adjust-volume amount=-infdB"), -96}, Level{"is_none", tag("adjust-volume"), 0},
        Level{"is_no_number", tag("adjust-volume amount=nandB"), 0},
        Level{"fades_only", tag("adjust-volume", {tag("param name=amount value=-3dB", {tag("fadeIn duration=1s")})}),
              -3},
        // Full until 104, then down within a second, and back at 107: low for 2 to 3 of 10 seconds.
        Level{"dips",
              animated({tag("keyframe time=104s value=0dB"), tag("keyframe time=105s value=-20dB"),
                        tag("keyframe time=106s value=-20dB"), tag("keyframe time=107s value=0dB")}),
              0},
        Level{"drops_early", animated({tag("keyframe time=101s value=0dB"), tag("keyframe time=102s value=-20dB")}),
              -20},
        Level{"holds_as_long_as_a_lower_one",
              animated({tag("keyframe time=104s value=-20dB"), tag("keyframe time=106s value=-6dB")}), -6},
        // Outside of 100 … 110 it was low for longer.
        Level{"was_low_before_its_clip",
              animated({tag("keyframe time=0s value=-20dB"), tag("keyframe time=102s value=-20dB"),
                        tag("keyframe time=103s value=-6dB")}),
              -6},
        Level{"is_a_component_s", tag("audio-channel-source srcCh=1", {tag("adjust-volume amount=-9dB")}), -9}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(AudioPlan, gains_of_nested_clips_multiply_and_connected_clips_keep_their_own)
{
    const Tag inner = compound("c", "sequence format=p25",
                               {tag("clip offset=0s duration=20s",
                                    {tag("adjust-volume amount=-6dB"),
                                     tag("audio ref=talk offset=0s duration=20s", {tag("adjust-volume amount=-1dB")}),
                                     tag("asset-clip ref=music lane=1 offset=0s duration=5s")})});
    const FCPAudioPlan found = plan(
        {tag("ref-clip ref=c offset=0s duration=20s",
             {tag("adjust-volume amount=-10dB"), tag("asset-clip ref=tape lane=1 offset=0s start=3600s duration=9s")})},
        {inner});
    ASSERT_EQ(found.segments.size(), 3);
    EXPECT_NEAR(found.segments[0].gain, std::pow(10, -17.0 / 20), 1e-12); // talk: −10 −6 −1
    EXPECT_NEAR(found.segments[1].gain, std::pow(10, -10.0 / 20), 1e-12); // music hangs on the −6 dB clip
    EXPECT_EQ(found.segments[2].gain, 1);                                 // tape hangs on the compound clip
}

TEST(AudioPlan, no_number_of_boosts_makes_a_gain_that_is_no_number)
{
    const Tag clip = tag("asset-clip ref=talk duration=9s", QList<Tag>(1'000, tag("adjust-volume amount=24dB")));
    EXPECT_TRUE(std::isfinite(plan({clip}).segments.value(0).gain));
}

TEST(AudioPlan, a_synchronized_clip_s_sources_have_levels_of_their_own)
{
    const auto source = [](const char *id, const char *level) {
        return tag(QByteArray("sync-source sourceID=") + id,
                   {tag("audio-role-source role=dialogue", {tag(QByteArray("adjust-volume amount=") + level)})});
    };
    const FCPAudioPlan found =
        plan({tag("sync-clip offset=0s duration=9s",
                  {tag("adjust-volume amount=-1dB"),
                   tag("spine", {tag("asset-clip ref=talk offset=0s duration=9s",
                                     {tag("asset-clip ref=music lane=-1 offset=1s duration=5s")})}),
                   tag("asset-clip ref=tape lane=1 offset=2s start=3600s duration=5s"), source("storyline", "-6dB"),
                   source("connected", "3dB")})});
    ASSERT_EQ(found.segments.size(), 3);
    EXPECT_NEAR(found.segments[0].gain, std::pow(10, -7.0 / 20), 1e-12);
    EXPECT_NEAR(found.segments[1].gain, std::pow(10, 2.0 / 20), 1e-12);
    EXPECT_EQ(found.segments[2].gain, 1); // hangs on the clip, outside of it
}

TEST(AudioPlan, a_clip_s_channels_of_one_file_are_one_piece_as_loud_as_the_loudest)
{
    const Tag quiet = tag("audio ref=talk srcCh=1 offset=0s duration=9s", {tag("adjust-volume amount=-6dB")});
    const Tag full = tag("audio ref=talk srcCh=2 lane=-1 offset=0s duration=9s");
    EXPECT_EQ(planText(plan({tag("clip offset=0s duration=9s",
                                 {tag("video ref=picture offset=0s duration=9s", {full}), quiet})})),
              QStringList{u"0: talk 0 + 9"_s});
    // Another place, another file, or another clip at the same place: a person put it there.
    EXPECT_EQ(plan({tag("clip offset=0s duration=9s",
                        {tag("audio ref=talk offset=0s duration=9s"), tag("audio ref=talk offset=0s duration=8s"),
                         tag("audio ref=music offset=0s duration=9s")})})
                  .segments.size(),
              3);
    EXPECT_EQ(plan({tag("gap offset=0s duration=9s", {tag("asset-clip ref=talk lane=1 offset=0s duration=9s"),
                                                      tag("asset-clip ref=talk lane=2 offset=0s duration=9s")})})
                  .segments.size(),
              2);
}

TEST(AudioPlan, a_clip_that_cannot_be_placed_is_named_and_left_out_only_when_asked)
{
    const QByteArray document = project("60s", {tag("asset-clip ref=talk name=A offset=0s duration=9s"),
                                                tag("asset-clip ref=talk name=B offset=19/2s start=2000s duration=9s",
                                                    {tag("asset-clip ref=music lane=1 offset=2001s duration=2s")})});
    try {
        FCPAudioPlan::parse(document);
        FAIL() << "a clip outside of its file was planned";
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"FCP 媒体的源时间范围无法准确读取，请先导出音频。"_s);
        EXPECT_EQ(error.detail(), u"见第 3 行的 asset-clip“B”。 时间线 00:00:09.500。"_s);
    }
    const FCPAudioPlan found = FCPAudioPlan::parse(document, UnreadableClips::leaveOut);
    EXPECT_EQ(planText(found), QStringList({u"0: talk 0 + 9"_s, u"10.5: music 0 + 2"_s}));
    EXPECT_EQ(found.skippedUnreadable, QStringList{u"B"_s});
    EXPECT_EQ(found.unreadableNotice(), u"1 段无法准确定位的片段，第一个是：B。"_s);
}

TEST(AudioPlan, whatever_kind_of_clip_cannot_be_read_is_left_out_when_asked)
{
    const Tag good = tag("asset-clip ref=talk duration=9s");
    const Tag hanging = tag("asset-clip ref=music lane=1 offset=1s duration=2s");
    const struct
    {
        Tag clip;
        QString sentence;
        bool keepsWhatHangs = true;
    } rows[] = {
        {tag("mc-clip ref=none name=X offset=0s duration=9s", {hanging}),
         u"多机位片段请先在 FCP 导出音频，再生成字幕。"_s},
        {tag("asset-clip ref=none name=X offset=0s duration=9s", {hanging}), u"FCP 片段缺少媒体资源，请重新拖入。"_s},
        {tag("asset-clip ref=broken name=X offset=0s duration=9s", {hanging}), u"FCP 时间值无效。"_s},
        {tag("ref-clip ref=empty name=X offset=0s duration=9s", {hanging}),
         u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s},
        {tag("asset-clip ref=talk name=X offset=0s duration=9s start=later", {hanging}), u"FCP 时间值无效。"_s, false},
        {tag("clip name=X offset=0s duration=9s", {tag("other-clip ref=talk"), hanging}),
         u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s, false},
    };
    const QList<Tag> more{tag("asset id=broken hasAudio=1 start=never", {tag("media-rep src=file:///m/b.mov")}),
                          tag("media id=empty", {tag("sequence format=p25")})};
    for (const auto &row : rows) {
        const QByteArray document = project("60s", {row.clip, good}, more);
        try {
            FCPAudioPlan::parse(document);
            ADD_FAILURE() << document.toStdString();
        } catch (const ConversionError &error) {
            EXPECT_EQ(error.message(), row.sentence);
        }
        const FCPAudioPlan found = FCPAudioPlan::parse(document, UnreadableClips::leaveOut);
        QStringList expected{u"9: talk 0 + 9"_s};
        if (row.keepsWhatHangs)
            expected.prepend(u"1: music 0 + 2"_s);
        EXPECT_EQ(planText(found), expected) << document.toStdString();
        EXPECT_EQ(found.skippedUnreadable, QStringList{u"X"_s}) << document.toStdString();
    }
}

// Effects and speed changes

TEST(AudioPlan, tells_of_audio_filters_that_are_on)
{
    const auto has = [](const QList<Tag> &children) {
        return plan({tag("asset-clip ref=talk offset=0s duration=9s", children),
                     tag("transition offset=8s duration=1s", {tag("filter-audio ref=filter")})})
            .hasAudioEffects;
    };
    EXPECT_FALSE(has({}));
    EXPECT_FALSE(has({tag("filter-audio ref=filter enabled=0")}));
    EXPECT_TRUE(has({tag("filter-audio ref=filter")}));
    EXPECT_TRUE(has({tag("filter-audio ref=filter enabled=0"), tag("filter-audio ref=filter enabled=1")}));
    EXPECT_TRUE(has({tag("audio-channel-source srcCh=1", {tag("filter-audio ref=filter")})}));
}

TEST(AudioPlan, does_not_read_the_content_of_a_retimed_or_muted_clip)
{
    const Tag unreadable = tag("mc-clip ref=none offset=0s duration=9s");
    const Tag hanging = tag("asset-clip ref=talk lane=1 offset=3s duration=2s");
    for (const Tag &clip : {tag("clip offset=0s duration=9s", {tag("timeMap"), unreadable, hanging}),
                            tag("sync-clip offset=0s duration=9s srcEnable=video", {unreadable, hanging})})
        EXPECT_EQ(planText(project("60s", {clip})), QStringList{u"3: talk 0 + 2"_s});
}

TEST(AudioPlan, counts_each_retimed_clip_once_and_keeps_what_hangs_on_it)
{
    const Tag timeMap = tag("timeMap", {tag("timept time=0s value=0s"), tag("timept time=9s value=18s")});
    const FCPAudioPlan found = plan(
        {tag("asset-clip ref=talk name=fast offset=0s start=100s duration=9s",
             {timeMap, tag("asset-clip ref=music lane=1 offset=104s duration=2s")}),
         tag("clip name=slow offset=9s duration=9s", {timeMap, tag("audio ref=talk offset=0s duration=9s", {timeMap})}),
         tag("ref-clip ref=c name=fast offset=18s duration=9s", {timeMap}),
         tag("asset-clip ref=mute name=silent offset=27s duration=9s", {timeMap}),
         tag("asset-clip ref=talk name=unheard offset=36s duration=9s srcEnable=video", {timeMap}),
         tag("video ref=picture name=still offset=45s duration=9s", {timeMap})},
        {compoundOfTalk});
    EXPECT_EQ(found.skippedRetimedAudio, QStringList({u"fast"_s, u"slow"_s, u"fast"_s}));
    EXPECT_EQ(found.retimeNotice(), u"3 段变速片段自身的音频，正常音轨照常识别。"_s);
    EXPECT_EQ(planText(found), QStringList{u"4: music 0 + 2"_s});
}

} // namespace
