#include "fcp/FCPXML.h"

#include "core/ConversionError.h"
#include "fcp/titles/SubtitleTransfer.h"
#include "tests/fcp/PublishedDtd.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largest = std::numeric_limits<qint64>::max();

Subtitle cue(qint64 start, qint64 end, const QString &text = u"字"_s, qint64 id = 1)
{
    return {.id = id, .start = start, .end = end, .text = text};
}

XmlDocument titled(const QList<Subtitle> &cues, const Options &options = {})
{
    return XmlDocument::parse(FCPXML::convert(cues, std::nullopt, options).toUtf8(), {});
}

QList<xmlNode *> all(const XmlDocument &document, QByteArrayView name)
{
    QList<xmlNode *> found;
    for (xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        if (Xml::isElement(element, name))
            found += element;
    }
    return found;
}

QByteArray attributes(const xmlNode *element)
{
    QByteArray text;
    for (const xmlAttr *each = element->properties; each; each = each->next) {
        const auto *const name = reinterpret_cast<const char *>(each->name);
        text += QByteArray(name) + '=' + *Xml::attribute(element, name) + ';';
    }
    return text;
}

QByteArray content(xmlNode *element)
{
    const std::unique_ptr<xmlChar, decltype(xmlFree)> text(xmlNodeGetContent(element), xmlFree);
    return {reinterpret_cast<const char *>(text.get())};
}

std::string refusal(const QList<Subtitle> &cues, const Options &options = {})
{
    try {
        FCPXML::convert(cues, std::nullopt, options);
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    }
}

} // namespace

TEST(NewDocument, has_every_element_with_its_attributes_in_order)
{
    Options options;
    options.rate = FrameRate::all()[3];
    options.width = 1920;
    options.height = 1080;
    options.name = u"片"_s;
    const XmlDocument document = titled({cue(1'000, 2'000, u" 第一行\n<b> & \"引\" \n"_s)}, options);
    const auto only = [&](QByteArrayView name) {
        const auto found = all(document, name);
        EXPECT_EQ(found.size(), 1) << name.data();
        return found.value(0);
    };
    EXPECT_EQ(attributes(document.root()), "version=1.10;");
    EXPECT_EQ(attributes(only("format")),
              "id=r1;frameDuration=1001/30000s;width=1920;height=1080;colorSpace=1-1-1 (Rec. 709);");
    EXPECT_EQ(attributes(only("effect")), "id=subeffect1;name=基本字幕;uid=" + FCPXML::uid.toByteArray() + ';');
    EXPECT_EQ(attributes(only("event")), "name=Lintora;");
    EXPECT_EQ(attributes(only("project")), "name=片;");
    EXPECT_EQ(attributes(only("sequence")),
              "format=r1;duration=60060/30000s;tcStart=0s;tcFormat=NDF;audioLayout=stereo;audioRate=48k;");
    EXPECT_EQ(attributes(only("gap")), "name=字幕底层;offset=0s;start=0s;duration=60060/30000s;");
    EXPECT_EQ(attributes(only("title")),
              "name=第一行 <b> & \"引\";ref=subeffect1;lane=1;offset=30030/30000s;start=3600s;duration=30030/30000s;"
              "role=titles.字幕;");
    QByteArrayList children;
    for (const xmlNode *const child : Xml::Children(only("title")))
        children += Xml::elementName(child).toByteArray();
    EXPECT_EQ(children.join(' '), "param param text text-style-def adjust-transform");
    EXPECT_EQ(content(only("text")), "第一行\n<b> & \"引\"") << "nothing may be added around the text";
    EXPECT_EQ(attributes(only("text-style-def")), "id=substyle1;");
    const auto styles = all(document, "text-style");
    ASSERT_EQ(styles.size(), 2);
    EXPECT_EQ(attributes(styles[0]), "ref=substyle1;");
    EXPECT_EQ(attributes(styles[1]),
              "font=PingFang SC;fontFace=Regular;fontSize=48.0;fontColor=1 1 1 1;alignment=center;");
    EXPECT_EQ(attributes(only("adjust-transform")), "position=0 -40.0;");
}

TEST(NewDocument, style_options_reach_the_text_style)
{
    Options options;
    options.font = u"A\"<&\t字"_s;
    options.fontFace = u"Semibold"_s;
    options.fontSize = 100'000;
    options.fontColor = u"1 0.5 0 1"_s;
    options.strokeEnabled = true;
    options.strokeWidth = 0.1;
    options.shadowEnabled = true;
    options.shadowBlur = 30;
    options.bottomPercent = 12.345;
    options.titleRole = u"titles.English"_s;
    const XmlDocument document = titled({cue(0, 1'000)}, options);
    EXPECT_EQ(attributes(all(document, "text-style")[1]),
              "font=A\"<&\t字;fontFace=Semibold;fontSize=100000.0;fontColor=1 0.5 0 1;alignment=center;"
              "strokeColor=0 0 0 1;strokeWidth=0.1;shadowColor=0 0 0 0.65;shadowOffset=2 -2;shadowBlurRadius=30.0;");
    EXPECT_EQ(attributes(all(document, "adjust-transform")[0]), "position=0 -37.655;");
    EXPECT_EQ(Xml::attribute(all(document, "title")[0], "role"), "titles.English");
}

TEST(NewDocument, titles_are_sorted_by_frame_and_stable)
{
    Options options;
    options.rate = FrameRate::all()[2];
    const XmlDocument document =
        titled({cue(5'000, 6'000, u"c"_s), cue(15, 1'000, u"a"_s), cue(10, 20, u"b"_s)}, options);
    QByteArrayList found;
    for (const xmlNode *const title : all(document, "title"))
        found += *Xml::attribute(title, "name") + ' ' + *Xml::attribute(title, "offset") + ' ' +
                 *Xml::attribute(title, "duration");
    EXPECT_EQ(found.join(", "), "a 0/25s 25/25s, b 0/25s 1/25s, c 125/25s 25/25s")
        << "and a title lasts a frame at least";
    EXPECT_EQ(Xml::attribute(all(document, "gap")[0], "duration"), "150/25s");

    QList<Subtitle> together; // as many as make a sort that is not stable show itself
    for (int i = 0; i < 100; ++i)
        together += cue(i % 2 * 4'000, 9'000 - i, QString::number(i));
    const XmlDocument crowd = titled(together, options);
    const auto titles = all(crowd, "title");
    for (qsizetype i = 0; i < titles.size(); ++i)
        EXPECT_EQ(*Xml::attribute(titles[i], "name"), QByteArray::number(i < 50 ? 2 * i : 2 * i - 99));
}

TEST(NewDocument, refuses_cues_that_cannot_be_titles)
{
    const auto invalid = [](int id) { return "第 " + std::to_string(id) + " 条字幕内容或时间无效。"; };
    const std::string characters = "第 9 条字幕含无效控制字符。";
    const std::string early = "时间偏移后有字幕早于项目起点，请调整偏移。";
    EXPECT_EQ(refusal({}), "请先打开 SRT。");
    EXPECT_EQ(refusal({cue(0, 1'000), cue(0, 1'000, u" \n\u3000"_s, 7)}), invalid(7));
    EXPECT_EQ(refusal({cue(1'000, 1'000, u"a"_s, 3)}), invalid(3));
    for (const char16_t c : {u'\u0007', u'\u0000', u'\u000B', u'\uFFFE', u'\uFFFF', u'\xD800', u'\xDC00'})
        EXPECT_EQ(refusal({cue(0, 1'000, u"a"_s + QChar(c) + u"b"_s, 9)}), characters) << std::hex << uint(c);
    EXPECT_EQ(refusal({cue(0, 1'000, u"a\tb\nc\rd\u0085\u007F😀"_s)}), "accepted");
    EXPECT_EQ(refusal({cue(-1, 1'000)}), early);
    EXPECT_EQ(refusal({cue(0, 10 * 365 * qint64(86'400'000))}), "accepted") << "ten years";
    EXPECT_EQ(refusal({cue(0, largest, u"a"_s, 4)}), invalid(4));

    Options shifted;
    shifted.rate = FrameRate::all()[2];
    shifted.shiftMS = -500;
    EXPECT_EQ(refusal({cue(400, 1'000)}, shifted), early);
    EXPECT_EQ(Xml::attribute(all(titled({cue(500, 1'000)}, shifted), "title")[0], "offset"), "0/25s");
    shifted.shiftMS = largest;
    EXPECT_EQ(refusal({cue(1, 2, u"a"_s, 5)}, shifted), invalid(5));
    shifted.shiftMS = std::numeric_limits<qint64>::min();
    EXPECT_EQ(refusal({cue(-1, 2, u"a"_s, 5)}, shifted), invalid(5));
    Options film;
    film.rate = FrameRate::all()[0];
    EXPECT_EQ(refusal({cue(0, largest, u"a"_s, 6)}, film), invalid(6));
}

TEST(NewDocument, refuses_options_out_of_range)
{
    const auto with = [](auto field, auto value) {
        Options options;
        options.*field = value;
        return refusal({cue(0, 1'000)}, options);
    };
    const std::string invalid = "画面或字体设置无效。";
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    struct Row
    {
        double Options::*field;
        std::vector<double> accepted;
        std::vector<double> refused;
    };
    for (const auto &[field, accepted, refused] : {
             Row{&Options::fontSize, {0.1, 1e300}, {0, -1, infinity, nothing}},
             Row{&Options::strokeWidth, {0, 20}, {-0.1, 20.1, infinity, nothing}},
             Row{&Options::shadowBlur, {0, 30}, {-0.1, 30.1, infinity, nothing}},
             Row{&Options::bottomPercent, {0, 40}, {-0.1, 40.5, infinity, nothing}},
         }) {
        for (const double value : accepted)
            EXPECT_EQ(with(field, value), "accepted") << value;
        for (const double value : refused)
            EXPECT_EQ(with(field, value), invalid) << value;
    }
    EXPECT_EQ(with(&Options::width, 0), invalid);
    EXPECT_EQ(with(&Options::height, -1), invalid);
    for (const FrameRate &rate : {FrameRate{u"0"_s, 0, 1}, {u"/0"_s, 1, 0}, {u"-"_s, -30, 1}, {u"large"_s, largest, 1}})
        EXPECT_EQ(with(&Options::rate, rate), invalid) << rate.label.toStdString();
    for (const auto field :
         {&Options::name, &Options::font, &Options::fontColor, &Options::strokeColor, &Options::shadowColor})
        EXPECT_EQ(with(field, u"a\u0001"_s), invalid);
    for (const auto field : {&Options::fontFace, &Options::titleRole})
        EXPECT_EQ(with(field, std::optional(u"\uFFFF"_s)), invalid);
}

TEST(NewDocument, touching_cues_leave_no_gap_at_any_rate)
{
    for (const FrameRate &rate : FrameRate::all()) {
        Generator generator(2);
        QList<Subtitle> cues = generator.cues(20'000);
        for (qsizetype i = 1; i < cues.size(); ++i)
            cues[i].start = cues[i - 1].end;
        Options options;
        options.rate = rate;
        Rational end = 0;
        const XmlDocument document = titled(cues, options);
        for (const xmlNode *const title : all(document, "title")) {
            const auto offset = Rational::parseTime(*Xml::attribute(title, "offset"));
            ASSERT_EQ(offset, end) << rate.label.toStdString();
            end = *offset + *Rational::parseTime(*Xml::attribute(title, "duration"));
        }
        EXPECT_EQ(end, Rational(*rate.frame(cues.back().end)) * rate.frameDuration()) << "and no drift";
    }
}

TEST(SubtitleTransfer, packs_the_sequence_into_one_clip)
{
    Options options;
    options.name = u"片 & 段"_s;
    const QList<Subtitle> cues{cue(0, 1'000), cue(1'000, 2'500)};
    const QByteArray bytes = SubtitleTransfer::clip(cues, options);
    const XmlDocument document = XmlDocument::parse(bytes, {});
    QByteArrayList children;
    for (const xmlNode *const child : Xml::Children(document.root()))
        children += Xml::elementName(child).toByteArray();
    EXPECT_EQ(children.join(' '), "resources ref-clip");
    EXPECT_EQ(attributes(all(document, "ref-clip")[0]), "name=片 & 段;ref=lintoraMedia;start=0s;duration=75/30s;");
    EXPECT_EQ(attributes(all(document, "media")[0]), "id=lintoraMedia;name=片 & 段;");
    EXPECT_EQ(Xml::attribute(Xml::child(all(document, "media")[0], "sequence"), "duration"), "75/30s");
    EXPECT_EQ(all(document, "title").size(), 2);
    EXPECT_TRUE(all(document, "event").isEmpty());
    EXPECT_THROW(SubtitleTransfer::clip({}, options), ConversionError);
}

TEST(NewDocument, satisfies_the_published_definition)
{
    Generator generator(4);
    Options options;
    options.strokeEnabled = true;
    options.shadowEnabled = true;
    const QList<Subtitle> cues = generator.cues(50);
    for (const QByteArray &bytes :
         {FCPXML::convert(cues, std::nullopt, options).toUtf8(), SubtitleTransfer::clip(cues, options)}) {
        const auto problems = PublishedDtd::problems(bytes, u"1.10"_s);
        if (!problems)
            GTEST_SKIP() << "the published document type definitions are not at hand";
        EXPECT_EQ(problems->toStdString(), "");
    }
}
