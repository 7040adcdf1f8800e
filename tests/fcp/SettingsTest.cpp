#include "fcp/FCPXML.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

XmlDocument parsed(const QByteArray &bytes)
{
    return FCPXML::document(bytes, u"/media"_s);
}

QByteArray withFormat(const QByteArray &attributes,
                      const QByteArray &project = "<project name='片'><sequence format='r1'/></project>")
{
    return "<fcpxml version='1.10'><resources><format id='r0'/><format id='r1' " + attributes + "/></resources>" +
           project + "</fcpxml>";
}

template <class Call>
std::string refusal(Call &&call)
{
    try {
        call();
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    } catch (const PlatformError &error) {
        return "platform: " + error.description().toStdString();
    }
}

std::string settingsRefusal(const QByteArray &bytes)
{
    return refusal([&] { FCPXML::settings(Options(), parsed(bytes)); });
}

} // namespace

TEST(Settings, every_spelling_of_a_frame_duration_finds_its_rate)
{
    for (const auto &[duration, label] : {std::pair<QByteArray, QString>{"1001/24000s", u"23.976"_s},
                                          {"100/2400s", u"24"_s},
                                          {"100/2500s", u"25"_s},
                                          {"200/5000s", u"25"_s},
                                          {"1001/30000s", u"29.97"_s},
                                          {"2002/60000s", u"29.97"_s},
                                          {"1/30s", u"30"_s},
                                          {"0.04s", u"25"_s},
                                          {"0.0333333s", u"30"_s},
                                          {"1/50s", u"50"_s},
                                          {"1001/60000s", u"59.94"_s},
                                          {"1/60s", u"60"_s}}) {
        const Options options = FCPXML::settings(
            Options(), parsed(withFormat("frameDuration='" + duration + "' width='1920' height='1080'")));
        EXPECT_EQ(options.rate.label, label) << duration.data();
    }
}

TEST(Settings, size_and_name_come_from_the_project_and_style_stays)
{
    Options given;
    given.font = u"Heiti SC"_s;
    given.shiftMS = 7;
    Options expected = given;
    expected.rate = FrameRate::all()[2];
    expected.width = 1080;
    expected.height = 1920;
    expected.fontSize = 1920.0 / 45;
    expected.name = u"片_字幕版"_s;
    EXPECT_EQ(FCPXML::settings(given, parsed(withFormat("frameDuration='1/25s' width='1080' height='1920'"))),
              expected);

    const Options bare = FCPXML::settings(
        given, parsed(withFormat("frameDuration='1/25s' width='wide'", "<project><sequence format='r1'/></project>")));
    EXPECT_EQ(bare.width, 3840);
    EXPECT_EQ(bare.height, 2160);
    EXPECT_EQ(bare.fontSize, 48);
    EXPECT_EQ(bare.name.toStdString(), "项目_字幕版");
}

TEST(Settings, refuse_a_project_that_cannot_be_matched)
{
    const std::string noFormat = "找不到项目画面格式。";
    const std::string badRate = "项目帧率暂不支持。";
    EXPECT_EQ(settingsRefusal(withFormat("", "<project><sequence format='r2'/></project>")), noFormat);
    EXPECT_EQ(settingsRefusal(withFormat("", "<project><sequence/></project>")), noFormat);
    EXPECT_EQ(settingsRefusal(withFormat("", "<project/>")), noFormat);
    EXPECT_EQ(settingsRefusal(withFormat("", "<project><sequence format=\"r1' or '1'='1\"/></project>")), noFormat);
    for (const QByteArray attributes :
         {"", "frameDuration='1/48s'", "frameDuration='x'", "frameDuration='0s'", "frameDuration='0.033333s'",
          "frameDuration='9223372036854775807/9223372036854775806s'"})
        EXPECT_EQ(settingsRefusal(withFormat(attributes)), badRate) << attributes.data();
}

TEST(Project, exactly_one_is_found_wherever_it_may_stand)
{
    const QByteArray project = "<project><sequence/></project>";
    const std::string several = "请选择只包含一个项目的 FCPXML。";
    for (const auto &[body, found] : {
             std::pair<QByteArray, bool>{project, true},
             {"<event>" + project + "</event>", true},
             {"<library><event/><event>" + project + "</event></library>", true},
             {"", false},
             {project + project, false},
             {"<event>" + project + "</event><event>" + project + "</event>", false},
             {"<library>" + project + "</library>", false},
         }) {
        const XmlDocument document = parsed("<fcpxml>" + body + "</fcpxml>");
        EXPECT_EQ(refusal([&] { FCPXML::project(document); }), found ? "accepted" : several) << body.data();
    }
    EXPECT_EQ(refusal([&] { FCPXML::project(parsed("<xmeml>" + project + "</xmeml>")); }), several);
}

TEST(ProjectFile, relative_sources_become_absolute_and_others_stay_to_the_letter)
{
    for (const auto &[source, expected] : {
             std::pair<QByteArray, QByteArray>{"a%20b.mov", "file:///media/a%20b.mov"},
             {"../x/素材 1+2.mov", "file:///x/%E7%B4%A0%E6%9D%90%201+2.mov"},
             {"/Volumes/a.mov", "file:///Volumes/a.mov"},
             {"12:30.mov", "file:///media/12:30.mov"},
             {"", ""},
             {"file:///Volumes/(a)%20b+c,é.mov", "file:///Volumes/(a)%20b+c,é.mov"},
             {"file://localhost/a.mov", "file://localhost/a.mov"},
             {"HTTP://host/a b", "HTTP://host/a b"},
         }) {
        const XmlDocument document = parsed("<fcpxml><asset src='" + source + "'/></fcpxml>");
        EXPECT_EQ(Xml::attribute(document.root()->children, "src"), expected) << source.data();
    }
}

TEST(ProjectFile, bundles_limits_and_bad_files)
{
    const QTemporaryDir folder;
    const auto write = [&](const QString &name, const QByteArray &content) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    };
    QDir(folder.path()).mkdir(u"项目.fcpxmld"_s);
    write(u"项目.fcpxmld/Info.fcpxml"_s, "<fcpxml><asset src='a.mov'/></fcpxml>");
    const XmlDocument bundle = FCPXML::document(folder.filePath(u"项目.fcpxmld"_s));
    EXPECT_TRUE(Xml::attribute(bundle.root()->children, "src")->endsWith("%E9%A1%B9%E7%9B%AE.fcpxmld/a.mov"));

    const auto reading = [](const QString &path) { return refusal([&] { FCPXML::document(path); }); };

    // Comments of more than ten million characters are beyond the parser; several make up the size.
    QByteArray exact = "<fcpxml>" + QByteArray("<!--" + QByteArray(1'000'000, 'x') + "-->").repeated(16) + "</fcpxml>";
    exact.insert(8, QByteArray(FCPXML::largestFile - exact.size(), ' '));
    EXPECT_EQ(reading(write(u"exact"_s, exact)), "accepted");
    EXPECT_EQ(reading(write(u"over"_s, exact + ' ')), "FCPXML 文件过大，请分段导入。");
    EXPECT_EQ(reading(write(u"entity"_s, "<!DOCTYPE a [<!ENTITY b 'c'>]><a/>")), "不支持含外部实体的 XML。");
    EXPECT_EQ(reading(write(u"cut"_s, exact.left(60))).substr(0, 10), "platform: ");
    EXPECT_EQ(reading(folder.path()).substr(0, 10), "platform: ");
    EXPECT_EQ(reading(folder.filePath(u"missing.fcpxmld"_s)).substr(0, 10), "platform: ");
}
