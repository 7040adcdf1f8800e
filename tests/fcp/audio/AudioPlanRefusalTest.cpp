#include "fcp/audio/FCPAudioPlan.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "fcp/FCPXML.h"
#include "tests/support/PlanText.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace StoryDocument;

namespace {

const QString badTime = u"FCP 时间值无效。"_s;
const QString badDuration = u"片段时长无效。"_s;
const QString badRange = u"FCP 媒体的源时间范围无法准确读取，请先导出音频。"_s;
const QString badStructure = u"此复合或多机位结构暂不能直接读取，请先在 FCP 导出音频。"_s;
const QString noResource = u"FCP 片段缺少媒体资源，请重新拖入。"_s;
const QString noFile = u"找不到片段原始音视频，请先在 FCP 重新连接媒体。"_s;
const QString multicam = u"多机位片段请先在 FCP 导出音频，再生成字幕。"_s;
const QString tooDeep = u"复合片段嵌套过深，请先在 FCP 导出音频。"_s;
const QString tooLong = u"请导入三小时以内的时间线范围。"_s;
const QString tooFar = u"请将超过三小时的时间线分段识别。"_s;
const QString tooMany = u"本次超过 250 个音频片段，请分段导入。"_s;
const QString nothingSounds = u"所选 FCP 内容没有可读取的音轨。"_s;
const QString nothingFound = u"没有找到可导入的 FCP 时间线内容。"_s;
const QString onlyRetimed =
    u"没有找到正常速度的音轨；变速片段自身的音频暂不参与识别。请从 FCP 导出需要识别的人声音频后导入。"_s;
const QString oneAtATime = u"请一次拖入一个 FCP 项目，或一组选中的片段。"_s;
const QString unplaced = u"请一次拖入一个项目或片段，以保持音轨时间对应。"_s;
const QString tooLarge = u"FCP 数据过大或含不支持的 XML 实体。"_s;

struct Refused
{
    const char *name;
    QByteArray document;
    QString message;
};

void PrintTo(const Refused &row, std::ostream *out)
{
    *out << row.name;
}

class AudioPlan_refuses : public ::testing::TestWithParam<Refused>
{};

TEST_P(AudioPlan_refuses, what_it_cannot_place)
{
    EXPECT_EQ(planText(GetParam().document), QStringList{u"! "_s + GetParam().message});
}

std::string rowName(const ::testing::TestParamInfo<Refused> &info)
{
    return info.param.name;
}

Tag talk(QByteArrayView more = "offset=0s duration=9s")
{
    return tag("asset-clip ref=talk " + more.toByteArray());
}

QByteArray one(QByteArrayView description, const QList<Tag> &children = {})
{
    return project("60s", {tag(description, children)});
}

QByteArray replaced(QByteArray document, const char *before, const char *after)
{
    return document.replace(before, after);
}

INSTANTIATE_TEST_SUITE_P(
    documents, AudioPlan_refuses,
    ::testing::Values(
        Refused{"of_another_kind", "<html/>", u"请拖入 FCP 时间线片段或项目。"_s},
        Refused{"of_nothing", selection({}), nothingFound},
        Refused{"of_a_project_without_sequence", selection({tag("project")}), nothingFound},
        Refused{"of_a_project_without_storyline", selection({tag("project", {tag("sequence format=p25 duration=9s")})}),
                nothingFound},
        Refused{"of_two_projects", selection({tag("event", {tag("project"), tag("project")})}), oneAtATime},
        Refused{"of_a_project_and_a_clip", selection({tag("project"), talk()}), oneAtATime},
        Refused{"of_clips_that_do_not_say_where", selection({talk("duration=9s"), talk("offset=9s duration=9s")}),
                unplaced},
        Refused{"of_clips_on_top_of_each_other", selection({talk(), talk()}), unplaced},
        Refused{"of_a_clip_without_duration", selection({tag("clip start=0s")}), badDuration},
        Refused{"of_an_entity", "<!DOCTYPE fcpxml [<!ENTITY a 'b'>]>" + selection({talk()}).sliced(55), tooLarge},
        Refused{"of_an_id_twice", project("9s", {talk()}, {tag("asset id=talk")}), u"FCP 资源编号重复。"_s}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    times, AudioPlan_refuses,
    ::testing::Values(
        Refused{"that_are_no_times", one("asset-clip ref=talk offset=5 duration=9s"), badTime},
        Refused{"over_zero", one("asset-clip ref=talk offset=0s start=1/0s duration=9s"), badTime},
        Refused{"of_a_gap", one("gap offset=0s start=x duration=9s"), badTime},
        Refused{"of_a_timeline", sequence("sequence format=p25 duration=9s tcStart=x", {talk()}), badTime},
        Refused{"beyond_64_bits_together",
                one("asset-clip ref=talk offset=1/9223372036854775807s start=1/9223372036854775806s duration=9s"),
                badTime},
        Refused{"without_duration", one("audio ref=endless offset=0s"), badDuration},
        Refused{"of_no_duration", one("asset-clip ref=talk offset=0s duration=0s"), badDuration},
        Refused{"of_a_negative_duration", one("asset-clip ref=talk offset=0s duration=-1s"), badDuration}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    sources, AudioPlan_refuses,
    ::testing::Values(
        Refused{"that_are_missing", one("asset-clip ref=none offset=0s duration=9s"), noResource},
        Refused{"that_are_not_named", one("ref-clip offset=0s duration=9s"), noResource},
        Refused{"without_a_file", one("asset-clip ref=lost offset=0s duration=9s"), noFile},
        Refused{"on_a_server",
                replaced(one("asset-clip ref=talk offset=0s duration=9s"), "file:///m/talk", "http://m/talk"), noFile},
        Refused{"of_a_path_without_folder",
                replaced(one("asset-clip ref=talk offset=0s duration=9s"), "file:///m/talk", "talk"), noFile},
        Refused{"of_which_nothing_is_shown", one("asset-clip ref=tape offset=0s start=0s duration=9s"), badRange},
        Refused{"that_run_at_another_pace",
                sequence("sequence format=p24 duration=60s",
                         {tag("asset-clip ref=talk offset=0s duration=9s", {tag("conform-rate srcFrameRate=25")})}),
                badRange},
        // Ten minutes at 1.001 are off by 0.6 s.
        Refused{"of_ntsc_for_long",
                one("asset-clip ref=talk offset=0s duration=60s", {tag("conform-rate srcFrameRate=29.97")}), badRange},
        Refused{"conformed_to_an_unknown_rate",
                sequence("sequence format=unrated duration=60s",
                         {tag("asset-clip ref=talk offset=0s duration=9s", {tag("conform-rate srcFrameRate=25")})}),
                badRange}),
    rowName);

Tag empty(const char *id)
{
    return tag(QByteArray("media id=") + id, {tag("sequence format=p25")});
}

INSTANTIATE_TEST_SUITE_P(
    structures, AudioPlan_refuses,
    ::testing::Values(
        Refused{"multicam_clips", one("mc-clip ref=none offset=0s duration=9s"), multicam},
        Refused{"multicam_media",
                project("9s", {tag("ref-clip ref=m offset=0s duration=9s")},
                        {tag("media id=m", {tag("multicam format=p25")})}),
                badStructure},
        Refused{"media_that_is_elsewhere",
                project("9s", {tag("ref-clip ref=m offset=0s duration=9s")}, {tag("media id=m")}), badStructure},
        Refused{"a_compound_without_storyline",
                project("9s", {tag("ref-clip ref=m offset=0s duration=9s")}, {empty("m")}), badStructure},
        Refused{"a_clip_of_an_effect", one("asset-clip ref=filter offset=0s duration=9s"), badStructure},
        Refused{"a_clip_of_a_form_to_come", one("holo-clip ref=talk offset=0s duration=9s"), badStructure},
        Refused{"a_compound_clip_in_itself",
                project("9s", {tag("ref-clip ref=m offset=0s duration=9s")},
                        {compound("m", "sequence format=p25", {tag("ref-clip ref=m offset=20s duration=9s")})}),
                tooDeep}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    ranges, AudioPlan_refuses,
    ::testing::Values(Refused{"that_are_empty", project("0s", {talk()}), tooLong},
                      Refused{"of_an_empty_storyline", sequence("sequence format=p25", {}), tooLong},
                      Refused{"over_three_hours", project("108001/10s", {talk()}), tooLong},
                      Refused{"over_three_hours_by_their_clips",
                              sequence("sequence format=p25", {tag("gap offset=0s duration=10801s"), talk()}), tooLong},
                      Refused{"with_sound_beyond_three_hours",
                              sequence("sequence format=p25",
                                       {tag("gap offset=0s duration=9s", {talk("lane=1 offset=10795s duration=9s")})}),
                              tooFar},
                      Refused{"without_sound", one("gap offset=0s duration=9s"), nothingSounds},
                      Refused{"with_retimed_sound_only",
                              one("asset-clip ref=talk offset=0s duration=9s", {tag("timeMap")}), onlyRetimed},
                      // What is wrong with a clip is said before what is wrong with the range.
                      Refused{"that_are_empty_after_its_clips",
                              project("0s", {tag("mc-clip ref=none offset=0s duration=9s")}), multicam}),
    rowName);

TEST(AudioPlan, tells_in_the_detail_which_element_it_refuses)
{
    const auto detail = [](const QByteArray &document) {
        try {
            FCPAudioPlan::parse(document);
            return std::string("accepted");
        } catch (const ConversionError &error) {
            return error.detail().toStdString();
        }
    };
    const auto clip = [](QByteArrayView attributes) { return one("asset-clip name=采访 " + attributes.toByteArray()); };
    for (const auto &[document, expected] : {
             std::pair{clip("ref=talk offset=5 duration=9s"), "第 3 行的 asset-clip“采访” 的 offset 是“5”。"},
             std::pair{clip("ref=talk offset=0s duration=0s"), "见第 3 行的 asset-clip“采访”。 时间线 00:00:00.000。"},
             std::pair{clip("ref=lost offset=0s duration=9s"), "见第 3 行的 asset-clip“采访”。 时间线 00:00:00.000。"},
             std::pair{clip("ref=none offset=0s duration=9s"), "见第 3 行的 asset-clip“采访”。 时间线 00:00:00.000。"},
             std::pair{clip("ref=tape offset=0s start=0s duration=9s"),
                       "见第 3 行的 asset-clip“采访”。 时间线 00:00:00.000。"},
             std::pair{one("\nmc-clip ref=none offset=0s duration=9s").replace("<\n", "\n<"), "见第 4 行的 mc-clip。"},
             std::pair{one("gap offset=0s duration=9s", {tag("holo-clip name=甲")}), "见第 3 行的 holo-clip“甲”。"},
             std::pair{selection({tag("clip start=0s name=" + QByteArray("长").repeated(41))}),
                       "见第 3 行的 "
                       "clip“长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长长…”。"},
             std::pair{project("9s", {talk()}, {tag("asset id=talk name=乙")}),
                       "第 3 行的 asset“乙” 的编号 talk 已被第 3 行的 asset 占用。"},
         })
        EXPECT_EQ(detail(document), expected);
}

TEST(AudioPlan, takes_a_range_of_exactly_three_hours)
{
    EXPECT_EQ(FCPAudioPlan::parse(project("10800s", {talk()})).duration, 10'800);
}

// Limits

QByteArray clips(int count)
{
    QList<Tag> items;
    for (int i = 0; i < count; ++i)
        items += talk("offset=" + QByteArray::number(i) + "s duration=1s");
    return project("600s", items);
}

TEST(AudioPlan, takes_250_segments_and_refuses_251)
{
    EXPECT_EQ(FCPAudioPlan::parse(clips(250)).segments.size(), 250);
    EXPECT_EQ(planText(clips(251)), QStringList{u"! "_s + tooMany});
}

/// A project in which `depth` ref-clips are nested, each `width` times in the one around it.
QByteArray nested(int depth, int width)
{
    QList<Tag> media;
    QList<Tag> content{talk()};
    for (int i = 0; i < depth; ++i) {
        const QByteArray id = 'c' + QByteArray::number(i);
        media += compound(id.constData(), "sequence format=p25", content);
        content = QList<Tag>(width, tag("ref-clip offset=0s duration=9s ref=" + id));
    }
    return project("60s", content, media);
}

TEST(AudioPlan, follows_24_nested_compound_clips_and_refuses_25)
{
    EXPECT_EQ(planText(nested(24, 1)), QStringList{u"0: talk 0 + 9"_s});
    EXPECT_EQ(planText(nested(25, 1)), QStringList{u"! "_s + tooDeep});
}

TEST(AudioPlan, gives_up_on_compound_clips_that_double_at_every_level)
{
    EXPECT_EQ(planText(nested(24, 2)), QStringList{u"! "_s + badStructure});
    EXPECT_EQ(planText(nested(12, 9)), QStringList{u"! "_s + badStructure});
}

TEST(AudioPlan, needs_no_deep_stack_for_clips_connected_to_clips)
{
    // Twelve compound clips, each with its content forty clips deep, are as many elements in each other as none ever
    // were.
    QList<Tag> media;
    Tag content = talk();
    for (int i = 0; i < 12; ++i) {
        for (int level = 0; level < 40; ++level)
            content = tag("gap offset=0s duration=9s", {tag("spine lane=1 offset=0s", {content})});
        const QByteArray id = 'c' + QByteArray::number(i);
        media += compound(id.constData(), "sequence format=p25", {content});
        content = tag("ref-clip offset=0s duration=9s ref=" + id);
    }
    EXPECT_EQ(planText(project("60s", {content}, media)), QStringList{u"! "_s + badStructure});
}

/// A document of exactly `size` bytes.
QByteArray padded(qsizetype size)
{
    QByteArray document = clips(1);
    document.chop(QByteArrayView("</fcpxml>").size());
    qsizetype left = size - document.size() - QByteArrayView("</fcpxml>").size();
    for (; left > 2'000; left -= 1'000)
        document += "<note>" + QByteArray(987, 'n') + "</note>";
    return document + QByteArray(left, '\n') + "</fcpxml>";
}

TEST(AudioPlan, refuses_data_over_16_MiB_and_takes_what_just_fits)
{
    EXPECT_EQ(planText(padded(FCPXML::largestFile)), QStringList{u"0: talk 0 + 1"_s});
    EXPECT_EQ(planText(padded(FCPXML::largestFile + 1)), QStringList{u"! "_s + tooLarge});
}

TEST(AudioPlan, passes_on_what_the_parser_says_of_broken_data)
{
    EXPECT_THROW(FCPAudioPlan::parse(QByteArrayView("")), PlatformError);
    EXPECT_THROW(FCPAudioPlan::parse(QByteArrayView("<fcpxml><project>")), PlatformError);
}

} // namespace
