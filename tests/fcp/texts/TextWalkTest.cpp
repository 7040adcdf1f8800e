#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Tag text(const QByteArray &content)
{
    return tag("text", {textTag("text-style ref=ts1", content)});
}

Tag title(const QByteArray &attributes, QList<Tag> children = {})
{
    children.prepend(text("字"));
    return tag("title ref=title " + attributes, children);
}

/// A track of an own to hold titles: "enabled=0" and the like may follow.
Tag clip(const QByteArray &attributes, const QList<Tag> &children)
{
    return tag("asset-clip ref=talk " + attributes, children);
}

std::string placesIn(const XmlDocument &tree)
{
    const bool hasProject = !FCPXML::projects(tree).empty();
    QStringList words;
    for (const auto &track : ProjectTexts::read(tree, hasProject ? FCPXML::project(tree) : nullptr)) {
        for (const Subtitle &cue : track.items)
            words.append(u"%1 %2-%3"_s.arg(cue.text, QString::number(cue.start), QString::number(cue.end)));
        for (const auto &skipped : track.skipped)
            words.append(u"[%1]"_s.arg(skipped.reason));
    }
    return words.join(u", "_s).toStdString();
}

/// Every text with its milliseconds or, in brackets, why it is none.
std::string places(const QByteArray &document)
{
    std::string found = placesIn(FCPXML::document(document, u"/"_s));
    EXPECT_EQ(placesIn(ProjectTexts::document(document)), found) << "read from what is kept for it";
    return found;
}

std::string inProject(const QList<Tag> &items, const QList<Tag> &more = {})
{
    return places(StoryDocument::project("100s", items, more));
}

Tag timeMap(const QList<QByteArray> &points)
{
    QList<Tag> tags;
    for (const QByteArray &point : points)
        tags.append(tag("timept " + point));
    return tag("timeMap", tags);
}

struct Placement
{
    const char *name;
    QList<Tag> items;
    const char *expected;
};

class Placed : public ::testing::TestWithParam<Placement>
{};

const QList<Placement> placements{
    {"in_the_storyline", {title("offset=3s start=3600s duration=2s")}, "字 3000-5000"},
    {"behind_items_without_offset", {tag("gap duration=4s"), title("duration=2s")}, "字 4000-6000"},
    {"connected_to_a_gap",
     {tag("gap offset=0s start=3600s duration=9s", {title("lane=1 offset=3601s duration=2s")})},
     "字 1000-3000"},
    {"outlasting_its_parent",
     {clip("offset=2s start=10s duration=3s", {title("lane=2 offset=9s duration=8s")})},
     "字 1000-9000"},
    {"on_a_title",
     {title("offset=5s start=3600s duration=3s", {title("lane=1 offset=3601s start=1s duration=1s")})},
     "字 5000-8000, 字 6000-7000"},
    {"in_a_connected_storyline",
     {clip("offset=5s start=20s duration=30s",
           {tag("spine lane=1 offset=22s", {tag("gap offset=0s duration=3s"), title("offset=3s duration=2s")})})},
     "字 10000-12000"},
    {"before_the_timeline_is_cut",
     {clip("offset=0s duration=9s", {title("lane=1 offset=-1s duration=3s")})},
     "字 0-2000"},
    {"beyond_the_timeline_is_cut",
     {clip("offset=90s duration=10s", {title("lane=1 offset=9s duration=3s")})},
     "字 99000-100000"},
    {"outside_the_timeline",
     {clip("offset=90s duration=10s", {title("lane=1 offset=11s duration=3s")})},
     "[不在看得见的时间里]"},
    {"disabled", {title("offset=0s duration=2s enabled=0")}, "[已停用]"},
    {"on_a_disabled_clip",
     {clip("offset=0s duration=9s enabled=0", {title("lane=1 offset=1s duration=1s")})},
     "[所在片段已停用]"},
    {"without_length", {title("offset=1s duration=0s")}, "[时长为零]"},
    {"with_an_unreadable_offset",
     {clip("offset=0s duration=9s", {title("lane=1 offset=early duration=1s")})},
     "[时间无法读取]"},
    {"behind_an_unreadable_offset",
     {clip("offset=x duration=9s", {title("lane=1 offset=1s duration=1s")})},
     "[时间无法读取]"},
    {"in_an_audition",
     {tag("audition offset=4s", {title("duration=2s"), title("duration=3s")})},
     "字 4000-6000, [是试演中未选用的备选]"},
    {"beside_looks",
     {clip("offset=0s duration=9s",
           {tag("adjust-transform", {title("lane=1 offset=1s duration=1s")}),
            title("lane=1 offset=2s duration=2s", {tag("param name=Opacity")}), tag("filter-video")})},
     "字 2000-4000"},
    {"behind_an_audition_of_no_known_length",
     {tag("audition", {tag("param"), title("duration=2s")}), title("duration=1s")},
     "字 0-2000, [时间无法读取]"},
    {"over_a_conformed_clip",
     {clip("offset=10s start=0s duration=25s",
           {tag("conform-rate srcFrameRate=24"), title("lane=1 offset=25s duration=2s")})},
     "字 34000-36000"},
    {"over_a_clip_of_the_same_rate",
     {clip("offset=10s start=0s duration=25s",
           {tag("conform-rate scaleEnabled=0 srcFrameRate=24"), title("lane=1 offset=5s duration=2s")})},
     "字 15000-17000"},
    {"connected_to_a_retimed_clip",
     {clip("offset=10s start=4s duration=20s",
           {timeMap({"time=0s value=0s", "time=40s value=80s"}), title("lane=1 offset=9s duration=2s")})},
     "字 15000-17000"},
    {"in_a_container_cut_to_its_window",
     {tag("clip offset=10s start=5s duration=4s", {title("offset=3s start=1s duration=4s")})},
     "字 10000-12000"},
    {"in_the_storyline_of_a_synchronized_clip",
     {tag("sync-clip offset=10s start=5s duration=20s", {tag("spine", {title("offset=7s duration=4s")})})},
     "字 12000-16000"},
    {"in_a_clip_whose_picture_is_off",
     {tag("sync-clip offset=0s duration=20s srcEnable=audio",
          {title("offset=1s duration=2s"), title("lane=1 offset=3s duration=2s")})},
     "[所在片段的画面已关闭], 字 3000-5000"},
    {"in_a_compound", {tag("ref-clip ref=inner offset=20s start=3603s duration=5s")}, "字 20000-22000, 字 24000-25000"},
    {"in_a_compound_at_double_speed",
     {tag("ref-clip ref=inner offset=20s start=3600s duration=5s",
          {timeMap({"time=3600s value=3600s", "time=3605s value=3610s"})})},
     "字 21000-22520, 字 23520-25000"},
    {"in_a_compound_of_varying_speed",
     {tag("ref-clip ref=inner offset=20s start=3600s duration=5s",
          {timeMap({"time=3600s value=3600s", "time=3602s value=3610s", "time=3605s value=3611s"})})},
     "[所在片段变速，位置不明], [所在片段变速，位置不明]"},
    {"in_a_compound_standing_still",
     {tag("ref-clip ref=inner offset=20s start=3600s duration=5s",
          {timeMap({"time=3600s value=3600s", "time=3605s value=3600s"})})},
     "[所在片段变速，位置不明], [所在片段变速，位置不明]"},
    {"in_a_compound_shown_twice",
     {tag("ref-clip ref=inner offset=0s start=3602s duration=3s"),
      tag("ref-clip ref=inner offset=3s start=3607s duration=3s")},
     "字 0-3000, 字 3000-6000, [不在看得见的时间里], [不在看得见的时间里]"},
    {"in_the_angle_that_is_seen",
     {tag("mc-clip ref=multi offset=10s start=100s duration=20s",
          {tag("mc-source angleID=B srcEnable=video"), tag("mc-source angleID=A srcEnable=audio")})},
     "字 12000-13000, [在未选用的机位上]"},
    {"in_angles_of_which_none_is_told",
     {tag("mc-clip ref=multi offset=10s start=100s duration=20s")},
     "[在未选用的机位上], [在未选用的机位上]"},
    {"without_text",
     {tag("title ref=title offset=0s duration=2s"), tag("title offset=2s duration=2s", {text(" \n")})},
     ""},
};

TEST_P(Placed, a_text_stands_where_it_is_seen)
{
    const QList<Tag> more{
        StoryDocument::compound("inner", "sequence format=p25 tcStart=3600s duration=20s",
                                {tag("gap offset=3600s start=0s duration=20s",
                                     {title("lane=1 offset=2s duration=3s"), title("lane=1 offset=7s duration=4s")})}),
        tag("media id=multi", {tag("multicam format=p25 tcStart=100s",
                                   {tag("mc-angle angleID=A", {title("offset=101s duration=1s")}),
                                    tag("mc-angle angleID=B", {title("offset=102s duration=1s")})})})};
    EXPECT_EQ(inProject(GetParam().items, more), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(TextWalk, Placed, ::testing::ValuesIn(placements),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(TextWalk, clips_without_a_project_are_a_timeline_of_their_own)
{
    EXPECT_EQ(
        places(StoryDocument::selection({clip("start=50s duration=20s", {title("lane=1 offset=53s duration=2s")})})),
        "字 3000-5000");
    EXPECT_EQ(places(StoryDocument::selection({clip("offset=7s duration=2s", {title("lane=1 offset=1s duration=1s")}),
                                               title("offset=9s duration=1s")})),
              "字 1000-2000, 字 2000-3000");
    EXPECT_THROW(places(StoryDocument::selection({title("duration=1s"), title("duration=1s")})), ConversionError);
}

TEST(TextWalk, the_timeline_begins_at_the_timecode_of_the_sequence)
{
    EXPECT_EQ(places(StoryDocument::sequence("sequence format=p25 tcStart=3600s duration=9s",
                                             {title("offset=3602s duration=1s")})),
              "字 2000-3000");
    // Some writers state no length.
    EXPECT_EQ(places(StoryDocument::sequence("sequence format=p25 duration=0s", {title("offset=2s duration=1s")})),
              "字 2000-3000");
}

TEST(TextWalk, a_compound_that_shows_itself_is_refused)
{
    const Tag inner = StoryDocument::compound(
        "loop", "sequence format=p25 duration=9s",
        {tag("ref-clip ref=loop offset=0s duration=9s"), tag("ref-clip ref=loop offset=0s duration=9s")});
    try {
        inProject({tag("ref-clip ref=loop offset=0s duration=9s")}, {inner});
        FAIL();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"项目中的复合片段展开后过多，无法读取其中的字幕。"_s);
    }
}

TEST(TextWalk, times_beyond_all_numbers_hide_a_text_and_no_other)
{
    EXPECT_EQ(inProject({clip("offset=0s duration=9s", {title("lane=1 offset=9223372036854775807s duration=1/3s"),
                                                        title("lane=1 offset=1/1000000007s duration=1s")})}),
              "字 0-1000, [时间无法读取]");
}

} // namespace
