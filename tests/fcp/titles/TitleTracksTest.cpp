#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/titles/TitleLooks.h"
#include "fcp/titles/WrittenTitles.h"
#include "tests/fcp/PublishedDtd.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const Options at25{.rate = FrameRate::all()[2]};

Subtitle cue(qint64 id, qint64 start, qint64 end, const QString &text)
{
    return {.id = id, .start = start, .end = end, .text = text};
}

TitleTrack captions(const QList<Subtitle> &cues, const QString &language)
{
    return {.cues = cues,
            .options = at25,
            .captions = CaptionRole{.format = CaptionRole::Format::itt, .language = language}};
}

/// Two clips, with a title and a caption in English that the user has made.
QByteArray project()
{
    return StoryDocument::project(
        "40s", {tag("gap offset=0s duration=20s",
                    {tag("caption lane=1 offset=9s duration=1s role=iTT?captionFormat=ITT.en",
                         {tag("text", {textTag("text-style", "a")})}),
                     tag("title ref=title lane=2 offset=1s duration=1s", {tag("text", {textTag("text-style", "b")})}),
                     tag("marker start=1s duration=1s")}),
                tag("gap offset=20s duration=20s")});
}

std::vector<ProjectTexts::Track> read(const QByteArray &bytes)
{
    const XmlDocument document = XmlDocument::parse(bytes, {});
    auto tracks = ProjectTexts::read(document, FCPXML::project(document));
    for (auto &track : tracks)
        track.places.clear(); // They look into the document.
    return tracks;
}

/// A title of the user's own template, of two fields, with a filter, animation, and things that are no look.
QByteArray designed()
{
    return StoryDocument::project(
        "40s",
        {tag("gap offset=0s duration=20s",
             {tag("title ref=own lane=1 offset=1s start=87453366/24000s duration=1s name=片头 role=names.names-1",
                  {tag("param name=Build key=9999/1 value=1",
                       {tag("keyframeAnimation", {tag("keyframe time=3/2s value=1")})}),
                   tag("text", {textTag("text-style ref=ts1", "Ann"), textTag("text-style ref=ts2", "e")}),
                   tag("text", {textTag("text-style ref=ts3", "导演 &amp; 剪辑")}),
                   tag("text-style-def id=ts1", {tag("text-style font=Songti fontSize=70")}),
                   tag("text-style-def id=ts2", {tag("text-style font=Songti fontSize=70")}),
                   tag("text-style-def id=ts3", {tag("text-style font=Kaiti fontSize=30")}),
                   Tag{.name = "adjust-transform", .attributes = " position=\"0 12\""}, tag("adjust-colorConform"),
                   tag("marker start=1s duration=1s"), tag("filter-video ref=glow name=Glow")})})},
        {tag("effect id=own name=人名条 uid=~/Titles.localized/a.moti src=file:///a.moti"),
         tag("effect id=glow name=Glow uid=FxGlow")});
}

TitleTemplate look(const QString &text = {}, int minorVersion = 10)
{
    const XmlDocument document = XmlDocument::parse(designed(), {});
    return TitleTemplates::read(document, FCPXML::project(document), text, minorVersion);
}

/// "lane role: texts" of every track.
std::string summary(const QByteArray &bytes)
{
    QStringList lines;
    for (const auto &track : read(bytes)) {
        QStringList texts;
        for (const Subtitle &each : track.items)
            texts.append(u"%1 %2"_s.arg(each.start).arg(each.text));
        lines.append(u"%1 %2: %3"_s.arg(track.lane).arg(track.role, texts.join(u", "_s)));
    }
    return lines.join(u"; "_s).toStdString();
}

QString refusal(const std::vector<TitleTrack> &tracks)
{
    try {
        FCPXML::convert(tracks, std::nullopt);
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

} // namespace

TEST(TitleTracks, stand_each_on_its_lane_and_in_its_style)
{
    Options english = at25;
    english.bottomPercent = 4;
    english.titleRole = u"titles.English"_s;
    const std::vector<TitleTrack> tracks{
        {.cues = {cue(1, 0, 1'000, u"一"_s), cue(2, 21'000, 22'000, u"二"_s)}, .options = at25},
        {.cues = {cue(1, 21'000, 22'000, u"two"_s), cue(2, 500, 1'000, u"one"_s)}, .options = english}};
    const QByteArray alone = FCPXML::convert(tracks, std::nullopt).toUtf8();
    EXPECT_EQ(summary(alone), "1 titles.字幕: 0 一, 21000 二; 2 titles.English: 520 one, 21000 two");
    EXPECT_EQ(alone.count("<effect "), 1);
    EXPECT_EQ(alone.count("position=\"0 -46.0\""), 2);
    EXPECT_EQ(alone.count("id=\"substyle4\""), 1);
    EXPECT_TRUE(alone.contains("duration=\"550/25s\" tcStart"));

    const TitleDocument into = FCPXML::convert(tracks, XmlDocument::parse(project(), {}));
    EXPECT_EQ(summary(into.toUtf8()), "1 iTT?captionFormat=ITT.en: 9000 a; 2 : 1000 b; 3 titles.字幕: 0 一, 21000 二; "
                                      "4 titles.English: 520 one, 21000 two");
    EXPECT_NO_THROW(WrittenTitles::verify(into.toUtf8(), into.marks(), tracks));
    const TitleDocument clip = NewDocument::clip(tracks);
    EXPECT_NO_THROW(WrittenTitles::verifyClip(clip.toUtf8(), clip.marks(), tracks));
    EXPECT_EQ(PublishedDtd::problems(clip.toUtf8(), u"1.10"_s).value_or(QString()), QString());
}

TEST(TitleTracks, are_each_held_against_what_was_written)
{
    std::vector<TitleTrack> tracks{{.cues = {cue(1, 0, 1'000, u"一"_s)}, .options = at25},
                                   captions({cue(7, 0, 1'000, u"one"_s)}, u"en"_s)};
    const TitleDocument document = FCPXML::convert(tracks, XmlDocument::parse(project(), {}));
    EXPECT_NO_THROW(WrittenTitles::verify(document.toUtf8(), document.marks(), tracks));
    tracks[1].cues[0].text = u"two"_s;
    try {
        WrittenTitles::verify(document.toUtf8(), document.marks(), tracks);
        FAIL();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"第 7 条字幕写入后核对不一致，原文件没有改动。"_s);
    }
}

TEST(TitleTracks, of_captions_are_valid_wherever_they_are_written)
{
    const std::vector<TitleTrack> tracks{captions({cue(1, 0, 1'000, u"一\n二 <&>"_s)}, u"cmn-Hans"_s),
                                         captions({cue(1, 0, 1'000, u"one"_s)}, u"en"_s)};
    // The base has captions in English: ours go above all, the Chinese ones beside them.
    const QByteArray into = FCPXML::convert(tracks, XmlDocument::parse(project(), {})).toUtf8();
    EXPECT_EQ(summary(into), "1 iTT?captionFormat=ITT.en: 9000 a; 2 : 1000 b; 1 iTT?captionFormat=ITT.cmn-Hans: 0 "
                             "一\n二 <&>; 3 iTT?captionFormat=ITT.en: 0 one");
    EXPECT_LT(into.lastIndexOf("<caption"), into.indexOf("<marker"));
    for (const QByteArray &bytes :
         {FCPXML::convert(tracks, std::nullopt).toUtf8(), NewDocument::clip(tracks).toUtf8()}) {
        EXPECT_FALSE(bytes.contains("<effect"));
        EXPECT_EQ(PublishedDtd::problems(bytes, u"1.10"_s).value_or(QString()), QString());
    }
}

TEST(TitleTracks, that_do_not_go_together_are_refused)
{
    const QList<Subtitle> one{cue(1, 0, 1'000, u"一"_s)};
    EXPECT_EQ(refusal({captions({cue(7, 0, 1'040, u"一"_s), cue(8, 1'000, 2'000, u"二"_s)}, u"en"_s)}),
              u"第 8 条字幕与前一条重叠，同一语言的说明字幕不能重叠。"_s);
    EXPECT_EQ(refusal({captions({cue(7, 0, 1'000, u"一"_s), cue(8, 1'000, 2'000, u"二"_s)}, u"en"_s)}), QString());
    EXPECT_EQ(refusal({captions(one, u"en"_s), captions(one, u"en"_s)}), u"有两条说明字幕轨的语言相同：en。"_s);
    EXPECT_EQ(refusal({{.cues = one, .options = at25}, {.cues = one}}), u"各条字幕轨的帧率不一致。"_s);
    EXPECT_EQ(refusal({{.cues = one, .options = at25}, {.cues = {}, .options = at25}}), u"请先打开 SRT。"_s);
}

TEST(TitleTemplates, take_the_look_of_a_title_and_nothing_else)
{
    const TitleTemplate taken = look();
    EXPECT_EQ(taken.name(), u"人名条"_s);
    EXPECT_EQ(taken.effects.size(), 2);
    EXPECT_EQ(taken.styleCount(), 2) << "the style of the second run goes with it";
    EXPECT_EQ(taken.lastKeyframe(), 1.5);
    EXPECT_EQ(taken.surroundings().after, u"导演 & 剪辑"_s);
    for (const char *const gone : {"marker", "adjust-colorConform", "offset", "Ann", "片头", "ts1"})
        EXPECT_FALSE(taken.xml.contains(gone)) << gone;
    for (const char *const kept : {"keyframe time", "position=\"0 12\"", "filter-video", "Songti", "Kaiti"})
        EXPECT_TRUE(taken.xml.contains(kept)) << kept;
    EXPECT_TRUE(look({}, 11).xml.contains("adjust-colorConform"));
    EXPECT_EQ(look(u"片头"_s), taken) << "by its name";
    EXPECT_THROW(look(u"没有"_s), ConversionError);
}

TEST(TitleLooks, are_offered_once_each_with_what_tells_them_apart)
{
    const auto plain = [](const char *time, const char *text, const char *font) {
        return tag("title ref=title name=普通 lane=1 duration=1s offset=" + QByteArray(time),
                   {tag("text", {textTag("text-style ref=ts1", text)}),
                    tag("text-style-def id=ts1", {tag("text-style font=" + QByteArray(font))})});
    };
    const QByteArray bytes = StoryDocument::project(
        "40s", {tag("gap offset=0s duration=20s",
                    {plain("1s", "甲", "Kaiti"), plain("3s", "乙", "Songti"), plain("5s", "丙", "Kaiti"),
                     tag("title ref=lost lane=1 offset=7s duration=1s",
                         {tag("text", {textTag("text-style", "没有效果")})})})});
    const XmlDocument document = XmlDocument::parse(bytes, {});
    const QList<TitleLooks::Offer> offers = TitleLooks::offered(document, 10);
    ASSERT_EQ(offers.size(), 2);
    EXPECT_EQ(offers[0].text, u"甲"_s);
    EXPECT_EQ(offers[0].name, u"普通"_s);
    EXPECT_EQ(offers[0].titles, 2);
    EXPECT_EQ(offers[1].text, u"乙"_s);
    EXPECT_EQ(offers[0].look, TitleTemplates::read(document, FCPXML::project(document), QString(), 10));
    EXPECT_THROW(TitleLooks::offered(document, 10, [] { throw ConversionError(u"停"_s); }), ConversionError);
}

TEST(TitleLooks, are_drawn_as_far_as_plain_text_goes)
{
    Options made = at25;
    made.font = u"Kaiti SC"_s;
    made.fontFace = u"Bold"_s;
    made.fontSize = 61.5;
    made.fontColor = u"1 0.5 0 1"_s;
    made.strokeEnabled = true;
    made.strokeWidth = 3;
    made.shadowEnabled = true;
    made.shadowBlur = 7;
    made.bottomPercent = 22;
    const TitleDocument document = FCPXML::convert({{.cues = {cue(1, 0, 1'000, u"字"_s)}, .options = made}}, {});
    const XmlDocument tree = XmlDocument::parse(document.toUtf8(), {});
    const TitleTemplate own = TitleTemplates::read(tree, FCPXML::project(tree), QString(), 10);
    EXPECT_EQ(TitleLooks::drawn(own, at25), made) << "our own title comes back whole";
    // A look that says less leaves the rest; stroke and shadow are its own business.
    Options base = made;
    base.fontFace.reset();
    const Options drawn = TitleLooks::drawn(look(), base);
    EXPECT_EQ(drawn.font, u"Songti"_s);
    EXPECT_EQ(drawn.fontSize, 70);
    EXPECT_EQ(drawn.bottomPercent, 22) << "it stands above the middle, where no caption does";
    EXPECT_FALSE(drawn.strokeEnabled || drawn.shadowEnabled);
}

TEST(TitleTemplates, are_written_for_every_cue_with_their_effects)
{
    const std::vector<TitleTrack> tracks{
        {.cues = {cue(1, 0, 1'000, u"张三 <1>"_s), cue(2, 2'000, 3'000, u"李四"_s)}, .options = at25, .look = look()},
        {.cues = {cue(1, 0, 1'000, u"普通"_s)}, .options = at25}};
    const TitleDocument alone = FCPXML::convert(tracks, std::nullopt);
    const QByteArray bytes = alone.toUtf8();
    EXPECT_NO_THROW(WrittenTitles::verify(bytes, alone.marks(), tracks));
    EXPECT_EQ(PublishedDtd::problems(bytes, u"1.10"_s).value_or(QString()), QString());
    EXPECT_EQ(summary(bytes),
              "1 names.names-1: 0 张三 <1>\n导演 & 剪辑, 2000 李四\n导演 & 剪辑; 2 titles.字幕: 0 普通");
    EXPECT_TRUE(bytes.contains("<effect id=\"subeffect1\" name=\"人名条\" uid=\"~/Titles.localized/a.moti\" "
                               "src=\"file:///a.moti\"/>\n        <effect id=\"subeffect2\" name=\"Glow\""));
    EXPECT_EQ(bytes.count("start=\"3600s\""), 3) << "none begins in mid-animation";
    EXPECT_EQ(bytes.count("position=\"0 12\""), 2);
    // In the document that it comes from, the effects that are there are referred to.
    const std::vector<TitleTrack> same{tracks[0]};
    const TitleDocument into = FCPXML::convert(same, XmlDocument::parse(designed(), {}));
    EXPECT_EQ(into.toUtf8().count("<effect "), 4) << "with the two that every such document has";
    EXPECT_EQ(into.toUtf8().count("<title ref=\"own\"") + into.toUtf8().count("ref=\"own\" lane=\"2\""), 3);
    EXPECT_NO_THROW(WrittenTitles::verify(into.toUtf8(), into.marks(), same));
}
