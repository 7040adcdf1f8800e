#include "fcp/texts/ProjectTexts.h"

#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/CaptionRole.h"
#include "fcp/texts/TextFields.h"
#include "fcp/timeline/ConformRate.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/validation/DocumentCheck.h"
#include "tests/support/Generator.h"
#include "tests/support/StoryDocument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using ProjectTexts::Track;

std::vector<Track> readProject(const QByteArray &bytes)
{
    const XmlDocument document = XmlDocument::parse(bytes, {});
    std::vector<Track> tracks = ProjectTexts::read(document, FCPXML::project(document));
    for (Track &track : tracks)
        track.places.clear(); // They look into the document.
    return tracks;
}

/// What a cue becomes on the grid: first frame, end frame, text.
std::string frames(const QList<Subtitle> &cues, const FrameRate &rate)
{
    QStringList words;
    for (const Subtitle &cue : cues)
        words.append(u"%1 %2 %3"_s.arg(*rate.frame(cue.start)).arg(*rate.frame(cue.end)).arg(cue.text));
    return words.join(u'\n').toStdString();
}

class EveryRate : public ::testing::TestWithParam<FrameRate>
{
protected:
    EveryRate() { m_options.rate = GetParam(); }

    /// Cues that are a frame long at least, so that the grid need not stretch them.
    QList<Subtitle> cues() { return m_generator.cues(300); }

    Options m_options;
    Generator m_generator{7};
};

TEST_P(EveryRate, titles_that_we_wrote_come_back_to_the_frame)
{
    const QList<Subtitle> cues = this->cues();
    const auto tracks = readProject(FCPXML::convert(cues, std::nullopt, m_options).toUtf8());
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_EQ(tracks[0].label, u"字幕"_s);
    EXPECT_EQ(frames(tracks[0].items, GetParam()), frames(cues, GetParam()));
    // And what comes back makes the same document again.
    EXPECT_EQ(FCPXML::convert(tracks[0].items, std::nullopt, m_options).toUtf8(),
              FCPXML::convert(cues, std::nullopt, m_options).toUtf8());
}

TEST_P(EveryRate, titles_of_a_dragged_clip_come_back_to_the_frame)
{
    const QList<Subtitle> cues = this->cues();
    const XmlDocument document =
        XmlDocument::parse(NewDocument::clip({{.cues = cues, .options = m_options}}).toUtf8(), {});
    const auto tracks = ProjectTexts::read(document, nullptr);
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_EQ(frames(tracks[0].items, GetParam()), frames(cues, GetParam()));
}

/// Clips of every source rate, and starts off the grid, under titles of ours.
TEST_P(EveryRate, titles_in_a_project_come_back_to_the_frame)
{
    // Sources that run no slower than the timeline: the others have fewer frames than there are places for titles.
    static const QList<QByteArray> names{"23.98", "24", "25", "29.97", "30", "50", "59.94", "60"};
    QList<QByteArray> rates;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const Rational source(FrameRate::all()[size_t(i)].numerator, FrameRate::all()[size_t(i)].denominator);
        if (ConformRate::pace(source, GetParam().frameDuration()) >= 1)
            rates.append(names[i]);
    }
    const QList<Subtitle> cues = this->cues();
    const qint64 seconds = cues.last().end / 1000 + 2;
    QList<Tag> items;
    for (qint64 i = 0; i < seconds; i += 10) {
        items.append(tag("asset-clip ref=talk offset=" + GetParam().time(*GetParam().frame(i * 1000)) +
                             " duration=" + GetParam().time(*GetParam().frame((i + 10) * 1000)) +
                             " start=" + QByteArray::number(i * 3 + 1) + "/7s",
                         {tag("conform-rate srcFrameRate=" + m_generator.pick(rates))}));
    }
    const Tag format = tag("format id=own width=1920 height=1080 frameDuration=" + GetParam().time(1));
    const QByteArray base =
        StoryDocument::sequence("sequence format=own duration=" + QByteArray::number(seconds) + 's', items, {format});
    const auto document = FCPXML::convert(cues, XmlDocument::parse(base, {}), m_options);
    const auto tracks = readProject(document.toUtf8());
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_EQ(frames(tracks[0].items, GetParam()), frames(cues, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(ProjectTexts, EveryRate, ::testing::ValuesIn(FrameRate::all()), [](const auto &row) {
    return "rate_" + QString(row.param.label).replace(u'.', u'_').toStdString();
});

/// Cues of which none begins before the last has ended, as captions of a language must not.
QList<Subtitle> oneByOne(QList<Subtitle> cues, const FrameRate &rate)
{
    qint64 end = 0;
    cues.removeIf([&](const Subtitle &cue) {
        const bool overlaps = *rate.frame(cue.start) < end;
        end = overlaps ? end : *rate.frame(cue.end);
        return overlaps;
    });
    qint64 number = 0;
    for (Subtitle &cue : cues)
        cue.id = ++number;
    return cues;
}

TEST_P(EveryRate, titles_to_captions_and_back_keep_text_and_times)
{
    const QList<Subtitle> cues = oneByOne(this->cues(), GetParam());
    ASSERT_GT(cues.size(), 100);
    const TitleTrack captions{.cues = readProject(FCPXML::convert(cues, std::nullopt, m_options).toUtf8())[0].items,
                              .options = m_options,
                              .captions = CaptionRole{.format = CaptionRole::Format::srt, .language = u"cmn-Hans"_s}};
    const QByteArray written = FCPXML::convert({captions}, std::nullopt).toUtf8();
    const auto tracks = readProject(written);
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_TRUE(tracks[0].captions);
    EXPECT_EQ(tracks[0].role, captions.captions->toText());
    EXPECT_EQ(frames(tracks[0].items, GetParam()), frames(cues, GetParam()));
    EXPECT_EQ(FCPXML::convert(tracks[0].items, std::nullopt, m_options).toUtf8(),
              FCPXML::convert(cues, std::nullopt, m_options).toUtf8());
    EXPECT_FALSE(written.contains("<effect"));
    EXPECT_EQ(DocumentCheck::problems(written), QList<Problem>());
    EXPECT_EQ(DocumentCheck::problems(NewDocument::clip({captions}).toUtf8()), QList<Problem>());
}

struct Content
{
    const char *name;
    QByteArray xml;
    const char *expected;
};

class Says : public ::testing::TestWithParam<Content>
{};

const QList<Content> contents{
    {"one_run", "<text><text-style ref='a'>你好</text-style></text>", "你好"},
    {"runs_with_layout_between", "<text>\n  <text-style>Introducin</text-style>\n  <text-style>g</text-style>\n</text>",
     "Introducing"},
    {"a_break_as_a_run_of_its_own",
     "<text><text-style>一</text-style><text-style>\n</text-style><text-style>二</text-style></text>", "一|二"},
    {"a_trailing_break_is_hidden", "<text><text-style>一\n</text-style></text>", "一"},
    {"empty_lines_go", "<text><text-style>一\n\n \n二</text-style></text>", "一|二"},
    {"indented_by_a_tool", "<text><text-style>\n\t\t一\n\t\t二\n\t</text-style></text>", "一|二"},
    {"other_line_breaks", "<text><text-style>一&#x2028;二&#13;三</text-style></text>", "一|二|三"},
    {"two_fields", "<text><text-style>姓名</text-style></text><text/><text><text-style>职务</text-style></text>",
     "姓名|职务"},
    {"bare_text", "<text>很早\n以前</text>", "很早|以前"},
    {"a_section", "<text><text-style><![CDATA[a < b]]> &amp; c</text-style></text>", "a < b & c"},
    {"nothing", "<text><text-style> </text-style></text><text/>", ""},
};

TEST_P(Says, a_title_says_what_its_runs_show)
{
    const XmlDocument document = XmlDocument::parse("<title>" + GetParam().xml + "</title>", {});
    EXPECT_EQ(TextFields::shown(TextFields::read(document.root())).replace(u'\n', u'|'),
              QString::fromUtf8(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(TextFields, Says, ::testing::ValuesIn(contents),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(ProjectTexts, tracks_go_by_role_and_lane)
{
    const auto one = [](const QByteArray &element) {
        return Tag{.name = element.split(' ').first(),
                   .attributes = element.mid(element.indexOf(' ')),
                   .children = {tag("text", {textTag("text-style", "字")})}};
    };
    const auto tracks = readProject(StoryDocument::project(
        "50s", {tag("gap offset=0s duration=50s",
                    {one("title lane='2' offset='9s' duration='1s'"), one("title lane='1' offset='3s' duration='1s'"),
                     one("title lane='1' offset='1s' duration='1s'"),
                     one("title lane='3' offset='3s' duration='1s' role='To Do.To Do-1'"),
                     one("title lane='3' offset='3s' duration='1s' role='titles.中文'"),
                     one("caption lane='1' offset='3s' duration='1s' role='我的?captionFormat=SRT.cmn-Hans'"),
                     one("caption lane='1' offset='2s' duration='1s' role='坏'")})}));
    QStringList found;
    for (const Track &track : tracks)
        found.append(u"%1: %2"_s.arg(track.label).arg(track.items.size()));
    EXPECT_EQ(found.join(u", "_s), u"标题 2: 1, 标题 1: 2, To Do: 1, 中文: 1, SRT cmn-Hans: 1, 说明字幕: 1"_s);
    EXPECT_EQ(tracks[1].items[0], (Subtitle{.id = 1, .start = 1000, .end = 2000, .text = u"字"_s}));
    EXPECT_TRUE(tracks[4].captions);
    EXPECT_EQ(tracks[4].role, u"我的?captionFormat=SRT.cmn-Hans"_s);
}

TEST(ProjectTexts, a_hundred_thousand_titles_are_read)
{
    constexpr qint64 count = 100'000;
    QByteArray titles;
    for (qint64 i = 0; i < count; ++i)
        titles += "<title lane='1' offset='" + QByteArray::number(i) +
                  "/25s' duration='1/25s'><text><text-style>字</text-style></text></title>";
    const auto tracks = readProject(StoryDocument::project("4000s", {textTag("gap offset=0s duration=4000s", titles)}));
    ASSERT_EQ(tracks.size(), 1U);
    ASSERT_EQ(tracks[0].items.size(), count);
    EXPECT_EQ(tracks[0].items.last(), (Subtitle{.id = count, .start = 3'999'960, .end = 4'000'000, .text = u"字"_s}));
}

TEST(CaptionRole, names_languages_as_final_cut_pro_does)
{
    const QList<std::pair<const char *, const char *>> names{{"en", "en"},
                                                             {"ja-JP", "ja-JP"},
                                                             {"cmn-Hans", "cmn-Hans"},
                                                             {"zh", "cmn-Hans"},
                                                             {"zh-CN", "cmn-Hans"},
                                                             {"zh-Hans", "cmn-Hans"},
                                                             {"zh-TW", "cmn-Hant"},
                                                             {"zh-Hant-HK", "cmn-Hant"},
                                                             {"", ""},
                                                             {"Chinese", ""},
                                                             {"EN", ""},
                                                             {"en_US", ""},
                                                             {"en\n", ""}};
    for (const auto &[tag, expected] : names)
        EXPECT_EQ(CaptionRole::knownLanguage(QString::fromLatin1(tag)).value_or(QString()),
                  QString::fromLatin1(expected))
            << tag;
}

TEST(CaptionRole, is_read_behind_the_name_that_the_user_gave)
{
    const auto role = CaptionRole::parse(u"subtitle?captionFormat=CEA608.en"_s);
    ASSERT_TRUE(role);
    EXPECT_EQ(role->format, CaptionRole::Format::cea608);
    EXPECT_EQ(role->language, u"en"_s);
    EXPECT_EQ((CaptionRole{.format = CaptionRole::Format::itt, .language = u"cmn-Hans"_s}).toText(),
              u"iTT?captionFormat=ITT.cmn-Hans"_s);
    for (const char *const wrong :
         {"titles", "SRT?captionFormat=SRT", "SRT?captionFormat=SRT.", "a?captionFormat=X.en"})
        EXPECT_FALSE(CaptionRole::parse(QString::fromLatin1(wrong))) << wrong;
}

} // namespace
