#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/titles/NewDocument.h"
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

/// "lane role: texts" of every track.
QString summary(const QByteArray &bytes)
{
    QStringList lines;
    for (const auto &track : read(bytes)) {
        QStringList texts;
        for (const Subtitle &each : track.items)
            texts.append(u"%1 %2"_s.arg(each.start).arg(each.text));
        lines.append(u"%1 %2: %3"_s.arg(track.lane).arg(track.role, texts.join(u", "_s)));
    }
    return lines.join(u"; "_s);
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
    EXPECT_EQ(summary(alone), u"1 titles.字幕: 0 一, 21000 二; 2 titles.English: 480 one, 21000 two"_s);
    EXPECT_EQ(alone.count("<effect "), 1);
    EXPECT_EQ(alone.count("position=\"0 -46.0\""), 2);
    EXPECT_EQ(alone.count("id=\"substyle4\""), 1);
    EXPECT_TRUE(alone.contains("duration=\"550/25s\" tcStart"));

    const TitleDocument into = FCPXML::convert(tracks, XmlDocument::parse(project(), {}));
    EXPECT_EQ(summary(into.toUtf8()), u"1 iTT?captionFormat=ITT.en: 9000 a; 2 : 1000 b; 3 titles.字幕: 0 一, 21000 二; "
                                      u"4 titles.English: 480 one, 21000 two"_s);
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
    EXPECT_EQ(summary(into), u"1 iTT?captionFormat=ITT.en: 9000 a; 2 : 1000 b; 1 iTT?captionFormat=ITT.cmn-Hans: 0 "
                             u"一\n二 <&>; 3 iTT?captionFormat=ITT.en: 0 one"_s);
    EXPECT_LT(into.lastIndexOf("<caption"), into.indexOf("<marker"));
    for (const QByteArray &bytes :
         {FCPXML::convert(tracks, std::nullopt).toUtf8(), NewDocument::clip(tracks).toUtf8()}) {
        EXPECT_FALSE(bytes.contains("<effect"));
        for (const QString &version : {u"1.10"_s, u"1.13"_s})
            EXPECT_EQ(PublishedDtd::problems(bytes, version).value_or(QString()), QString());
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
