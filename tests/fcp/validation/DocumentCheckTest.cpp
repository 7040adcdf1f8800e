#include "fcp/validation/DocumentCheck.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/Utf8Writer.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/validation/DocumentRules.h"
#include "fcp/xml/XmlWriter.h"
#include "tests/fcp/PublishedDtd.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A document of many kinds of elements that nothing is wrong with, one line each.
QByteArray sound(const QByteArray &version = "1.10")
{
    const QByteArray source =
        version == "1.8"
            ? QByteArray(R"(<asset id="a1" src="file:///a.mov" start="0s" duration="99s" hasVideo="1" format="f1"/>)")
            : QByteArray(
                  R"(<asset id="a1" start="0s" duration="99s" hasVideo="1" format="f1"><media-rep src="file:///a.mov"/></asset>)");
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE fcpxml>
<fcpxml version=")" +
           version + R"(">
<resources>
<format id="f1" frameDuration="1/25s" width="1920" height="1080"/>
)" + source +
           R"(
<effect id="e1" name="Basic Title" uid=".../Basic Title.moti"/>
<media id="m1"><multicam format="f1"><mc-angle angleID="A"><gap duration="9s"/></mc-angle></multicam></media>
</resources>
<library><event name="E"><project name="P"><sequence format="f1" duration="99s" tcStart="3600s" audioLayout="stereo">
<note>hi</note>
<spine>
<asset-clip ref="a1" offset="3600s" duration="10s" start="1s"><note>n</note><adjust-transform position="0 1"/>
<title ref="e1" lane="1" offset="26/25s" duration="1s" name="x"><param name="p" key="k" value="v"/>
<text><text-style ref="ts1">字</text-style></text><text-style-def id="ts1"><text-style font="F"/></text-style-def></title>
<caption lane="1" offset="2s" duration="1s" role="iTT?captionFormat=ITT.cmn-Hans"><text>字</text></caption>
<marker start="1s" duration="1/25s" value="m"/><metadata><md key="k" value="v"/></metadata></asset-clip>
<mc-clip ref="m1" offset="3610s" duration="2s"><mc-source angleID="A" srcEnable="video"/></mc-clip>
<audition offset="3612s"><title ref="e1" duration="1s"/><title ref="e1" duration="1s"/></audition>
<gap offset="3613s" duration="1s"><spine lane="1" offset="1/25s"><gap offset="0s" duration="1s"/></spine></gap>
</spine></sequence></project></event></library>
</fcpxml>)";
}

std::string findings(const QByteArray &bytes)
{
    QStringList words;
    for (const Problem &each : DocumentCheck::problems(bytes))
        words.append(u"%1 %2 %3"_s.arg(each.line).arg(each.element, each.rule));
    return words.join(u", "_s).toStdString();
}

struct Fault
{
    const char *name;
    QByteArray before; ///< Of the sound document.
    QByteArray after;
    const char *expected; ///< Line, element and rule.
};

class Faults : public ::testing::TestWithParam<Fault>
{};

const QList<Fault> faults{
    {"nothing", "", "", ""},
    {"unknown_element", "<note>n</note>", "<notes/>", "13 notes dtd.element"},
    {"element_of_a_later_version", "<adjust-transform position=\"0 1\"/>", "<adjust-stereo-3D/>",
     "13 adjust-stereo-3D dtd.element"},
    {"wrong_order", "<note>n</note><adjust-transform position=\"0 1\"/>",
     "<adjust-transform position=\"0 1\"/><note>n</note>", "13 note dtd.order"},
    {"twice", "<note>n</note>", "<note>n</note><note>n</note>", "13 note dtd.order"},
    {"wrong_place", "<note>hi</note>", "<marker start=\"0s\" value=\"m\"/>", "11 marker dtd.content"},
    {"missing_child", "<media-rep src=\"file:///a.mov\"/>", "", "6 asset dtd.missing"},
    {"text_between", "<mc-source", "loose<mc-source", "18 mc-clip dtd.text"},
    {"unknown_attribute", "name=\"x\"", "title=\"x\"", "14 title dtd.attribute"},
    {"attribute_of_a_later_version", "key=\"k\" value=\"v\"/>\n", "key=\"k\" auxValue=\"v\"/>\n",
     "14 param dtd.attribute"},
    {"missing_attribute", "uid=\".../Basic Title.moti\"", "", "7 effect dtd.required"},
    {"value_out_of_range", "srcEnable=\"video\"", "srcEnable=\"picture\"", "18 mc-source dtd.value"},
    {"attribute_of_another_namespace", "name=\"x\"", "xml:name=\"x\"", "14 title dtd.attribute"},
    {"element_of_another_namespace", "<gap offset=\"0s\" duration=\"1s\"/>",
     "<x:gap xmlns:x=\"urn:x\" offset=\"1/7s\" duration=\"1s\"/>", "20 gap dtd.element"},
    {"on_the_line_where_the_tag_begins", "<title ref=\"e1\" lane=\"1\" offset=\"26/25s\"",
     "<title ref=\"e1\"\nlane=\"1\" offset=\"26/24s\"", "14 title time.grid"},
    {"duplicate_id", "id=\"ts1\"", "id=\"e1\"", "15 text-style-def dtd.duplicate-id, 15 text-style dtd.reference"},
    {"events_beside_a_library", "</fcpxml>", "<event/></fcpxml>", "22 event dtd.order"},
    {"two_libraries", "</fcpxml>", "<library/></fcpxml>", "22 library dtd.order"},
    {"half_of_a_pair", "<adjust-transform", "<adjust-crop mode=\"pan\"><pan-rect/></adjust-crop><adjust-transform",
     "13 adjust-crop dtd.missing"},
    {"dangling_reference", "<asset-clip ref=\"a1\"", "<asset-clip ref=\"a9\"", "13 asset-clip dtd.reference"},
    {"id_with_a_blank", "id=\"ts1\"", "id=\"1 s\"", "15 text-style-def dtd.id, 15 text-style dtd.reference"},
    {"offset_between_frames", "offset=\"26/25s\"", "offset=\"26/24s\"", "14 title time.grid"},
    {"length_between_frames", "offset=\"3610s\" duration=\"2s\"", "offset=\"3610s\" duration=\"1/50s\"",
     "18 mc-clip time.grid"},
    {"conformed_clips_count_otherwise",
     "<note>n</note><adjust-transform position=\"0 1\"/>\n<title ref=\"e1\" lane=\"1\" offset=\"26/25s\"",
     "<note>n</note><conform-rate srcFrameRate=\"24\"/><adjust-transform position=\"0 1\"/>\n<title ref=\"e1\" "
     "lane=\"1\" offset=\"26/24s\"",
     ""},
    {"negative_length", "offset=\"26/25s\" duration=\"1s\"", "offset=\"26/25s\" duration=\"-1s\"",
     "14 title time.negative"},
    {"no_time", "offset=\"26/25s\"", "offset=\"26 frames\"", "14 title time.form"},
    {"huge_time", "offset=\"26/25s\"", "offset=\"9223372036854775807/7s\"", "14 title time.range"},
    {"title_of_a_format", "<title ref=\"e1\" lane", "<title ref=\"f1\" lane", "14 title title.effect"},
    {"no_lane", "<title ref=\"e1\" lane=\"1\"", "<title ref=\"e1\"", "14 title lane.missing"},
    {"lane_in_a_storyline", "<mc-clip ref=\"m1\"", "<mc-clip ref=\"m1\" lane=\"1\"", "18 mc-clip lane.storyline"},
    {"lane_of_words", "<title ref=\"e1\" lane=\"1\"", "<title ref=\"e1\" lane=\"top\"", "14 title lane.form"},
    {"no_frame_duration", "frameDuration=\"1/25s\" ", "", "10 sequence format.frame-duration"},
    {"mono", "audioLayout=\"stereo\"", "audioLayout=\"mono\"", "10 sequence sequence.audio-layout"},
    {"no_source", "src=\"file:///a.mov\"", "src=\"\"", "6 media-rep asset.source"},
    {"outside_the_asset", "duration=\"99s\" hasVideo", "duration=\"5s\" hasVideo", "13 asset-clip asset.range"},
    {"a_still", "duration=\"99s\" hasVideo", "duration=\"0s\" hasVideo", "13 asset-clip asset.still"},
    {"a_template_of_ones_own", "uid=\"...", "uid=\"~/Titles.localized", "7 effect effect.local"},
    {"zone_by_name", "<project name=\"P\"", "<project name=\"P\" modDate=\"2026-01-01 10:00:00 CST\"",
     "10 project date"},
    {"caption_role", "iTT?captionFormat=ITT.cmn-Hans", "subtitles", "16 caption caption.role"},
    {"caption_language", "ITT.cmn-Hans", "ITT.zh-CN", "16 caption caption.language"},
    {"caption_lines", "<text>字</text>", "<text>一\n二\n三</text>", "16 caption caption.lines"},
    {"caption_lines_of_runs", "<text>字</text>",
     "<text>\n\n<text-style ref=\"ts1\">一\n</text-style><text-style ref=\"ts1\">二&#10;三</text-style></text>",
     "16 caption caption.lines"},
    {"captions_overlap", "<marker",
     "<caption lane=\"2\" offset=\"51/25s\" duration=\"1s\" role=\"iTT?captionFormat=ITT.cmn-Hans\"/><marker",
     "17 caption caption.overlap"},
    {"standalone", "encoding=\"UTF-8\"?>", "encoding=\"UTF-8\" standalone=\"yes\"?>", "3 fcpxml document.standalone"},
    {"future_version", "version=\"1.10\"", "version=\"1.15\"", "3 fcpxml document.version"},
    {"old_version", "version=\"1.10\"", "version=\"1.5\"", "3 fcpxml document.version"},
};

TEST_P(Faults, a_fault_is_named_with_its_line)
{
    QByteArray bytes = sound();
    if (!GetParam().before.isEmpty()) {
        const qsizetype at = bytes.indexOf(GetParam().before);
        ASSERT_GE(at, 0);
        bytes.replace(at, GetParam().before.size(), GetParam().after);
    }
    EXPECT_EQ(findings(bytes), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(DocumentCheck, Faults, ::testing::ValuesIn(faults),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(DocumentCheck, our_own_documents_have_no_fault)
{
    Generator generator(5);
    const QList<Subtitle> cues = generator.cues(50);
    EXPECT_EQ(findings(FCPXML::convert(cues, std::nullopt, {}).toUtf8()), "");
    EXPECT_EQ(findings(NewDocument::clip({{.cues = cues}}).toUtf8()), "");
}

TEST(DocumentCheck, a_problem_tells_the_reason_and_the_fix)
{
    const Problem problem = DocumentCheck::problems(sound().replace("26/25s", "26/24s")).at(0);
    EXPECT_EQ(problem.message, u"此项目不在编辑帧边界上（offset）。"_s);
    EXPECT_EQ(problem.fix, u"offset 改为 27/25s。"_s);
    EXPECT_EQ(problem.severity, Problem::Severity::warning);
}

TEST(DocumentCheck, what_is_no_document_is_refused)
{
    EXPECT_THROW(DocumentCheck::problems("<fcpxml>"), PlatformError);
    EXPECT_THROW(DocumentCheck::problems("<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>"), ConversionError);
    EXPECT_THROW(DocumentCheck::problems("<?xml version='1.0'encoding='UTF-8'?><a>text</a>"), PlatformError);
    EXPECT_THROW(DocumentCheck::problems("<a b='1' b='2'>text</a>"), PlatformError);
    EXPECT_EQ(findings("<svg/>"), "1 svg document.root");
    EXPECT_EQ(findings("<title lane='1'/>"), "1 title document.root");
    // No more are told than anybody reads.
    EXPECT_EQ(
        DocumentCheck::problems("<fcpxml version='1.10'>" + QByteArray("<a/>").repeated(5000) + "</fcpxml>").size(),
        DocumentCheck::mostProblems + 1);
}

TEST(DocumentCheck, a_title_of_anything_but_an_effect_is_told_of)
{
    const QByteArray bytes = sound()
                                 .replace("<effect", "<param id=\"p1\"/><effect")
                                 .replace("<title ref=\"e1\" lane", "<title ref=\"p1\" lane");
    EXPECT_NE(findings(bytes).find("14 title title.effect"), std::string::npos) << findings(bytes);
}

TEST(DocumentCheck, an_old_version_is_taken_and_an_unknown_one_is_not)
{
    using Severity = Problem::Severity;
    for (const auto &[version, severity] :
         {std::pair("1.0", Severity::warning), std::pair("1.7", Severity::warning), std::pair("1.-1", Severity::error),
          std::pair("1.x", Severity::error), std::pair("2.10", Severity::error), std::pair("", Severity::error)}) {
        const auto problems = DocumentCheck::problems(QByteArray("<fcpxml version='") + version + "'/>");
        ASSERT_EQ(problems.size(), 1) << version;
        EXPECT_EQ(problems[0].severity, severity) << version;
    }
}

/// However much is wrong, what is told is what comes first.
TEST(DocumentCheck, tells_of_the_first_of_very_many_problems)
{
    const QByteArray many =
        "<fcpxml version='1.10'><resources>" + QByteArray("<a/>\n").repeated(20'000) + "<format/></resources></fcpxml>";
    const QList<Problem> problems = DocumentCheck::problems("<fcpxml version='1.10' x='1'>\n" + many.sliced(23));
    ASSERT_EQ(problems.size(), DocumentCheck::mostProblems + 1);
    EXPECT_EQ(problems[0].rule, u"dtd.attribute"_s);
    for (qsizetype i = 1; i < problems.size(); ++i)
        ASSERT_EQ(problems[i].line, i + 1);
}

/// Something about a document changed at random: an element gone, doubled or elsewhere, an attribute gone or moved.
void damage(const XmlDocument &document, Generator &generator)
{
    QList<xmlNode *> elements;
    for (xmlNode *each = Xml::nextElement(document.root(), document.root()); each;
         each = Xml::nextElement(each, document.root()))
        elements.append(each);
    xmlNode *const one = generator.pick(elements);
    xmlNode *const other = generator.pick(elements);
    const auto isInside = [](const xmlNode *node, const xmlNode *around) {
        for (; node; node = node->parent) {
            if (node == around)
                return true;
        }
        return false;
    };
    switch (generator.number(0, 4)) {
    case 0:
        xmlUnlinkNode(one);
        xmlFreeNode(one);
        break;
    case 1:
        xmlAddNextSibling(one, xmlCopyNode(one, 1));
        break;
    case 2:
        if (!isInside(other, one))
            xmlAddPrevSibling(other, one);
        break;
    case 3:
        if (one->properties)
            xmlRemoveProp(one->properties);
        break;
    default:
        // The attribute of an element may be put into that element itself, which frees the value that is passed.
        if (other->properties)
            Xml::setAttribute(
                one, reinterpret_cast<const char *>(other->properties->name),
                Xml::attribute(other, reinterpret_cast<const char *>(other->properties->name)).value_or(QByteArray()));
        break;
    }
}

/// Our table says of a document what the published definition of its version says.
TEST(DocumentCheck, agrees_with_the_published_definitions)
{
    Generator generator(11);
    int invalid = 0;
    for (int minor = DocumentRules::oldest; minor <= DocumentRules::newest; ++minor) {
        const QString version = u"1.%1"_s.arg(minor);
        for (int round = 0; round < 120; ++round) {
            const XmlDocument document = XmlDocument::parse(sound(version.toLatin1()), {});
            if (round > 0)
                damage(document, generator);
            QByteArray bytes;
            Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
            XmlWriter(out).write(document);
            out.finish();
            const auto published = PublishedDtd::problems(bytes, version);
            if (!published)
                GTEST_SKIP() << "the published definitions are not at hand";
            QStringList ours;
            for (const Problem &each : DocumentCheck::problems(bytes)) {
                if (each.rule.startsWith(u"dtd."_s))
                    ours.append(each.rule + u' ' + each.message);
            }
            invalid += ours.isEmpty() ? 0 : 1;
            EXPECT_EQ(ours.isEmpty(), published->isEmpty()) << version.toStdString() << '\n'
                                                            << ours.join(u'\n').toStdString() << '\n'
                                                            << published->toStdString() << '\n'
                                                            << bytes.toStdString();
        }
    }
    EXPECT_GT(invalid, 200);
}

} // namespace
