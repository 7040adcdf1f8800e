#include "tests/support/CommandTest.h"

#include "core/SRT.h"
#include "core/files/FileReader.h"
#include "core/json/JsonWriter.h"
#include "fcp/FCPXML.h"
#include "store/LaunchLink.h"
#include "store/Locations.h"
#include "store/StylePresetStore.h"
#include "tests/support/Sessions.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The program with a home folder of its own.
class StoreCommandsTest : public CommandTest
{
protected:
    StoreCommandsTest() { qputenv("HOME", QDir(path(u"."_s)).canonicalPath().toUtf8()); }
    ~StoreCommandsTest() override { qputenv("HOME", m_formerHome); }

private:
    QByteArray m_formerHome = qgetenv("HOME");
};

/// The program's standard output, where it succeeded without a word on standard error.
std::string output(const QStringList &arguments, const QByteArray &input = {})
{
    const CommandLine::Outcome outcome = CommandLine::run(arguments, input);
    EXPECT_EQ(outcome.status, 0) << outcome.error.constData();
    EXPECT_EQ(outcome.error, "");
    return outcome.output.toStdString();
}

void expectFailure(const QStringList &arguments, int status, const std::string &error, const QByteArray &input = {})
{
    const CommandLine::Outcome outcome = CommandLine::run(arguments, input);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error.toStdString(), error);
}

} // namespace

TEST_F(StoreCommandsTest, session_checks_a_file)
{
    const QByteArray encoded = Sessions::full().encoded();
    const QString session = file(u"草稿.json"_s, " " + encoded);
    EXPECT_EQ(output({u"session"_s, session, u"--json"_s}), encoded.toStdString() + '\n');
    EXPECT_EQ(output({u"session"_s, u"-"_s}, encoded),
              "来源：访谈.srt\n字幕：2 条\n语言组：中文，1 条（当前）\n语言组：English，1 条\n");
    expectFailure({u"session"_s, u"-"_s}, 1, "数据无法读取：缺少“items”。\n", R"({"schema":2})");
    expectFailure({u"session"_s, u"/dev/zero"_s}, 1, "字幕会话过大。\n");
}

TEST_F(StoreCommandsTest, session_resolves_and_makes_links)
{
    const QString session = Locations::sessions() + u"/0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.json"_s;
    const std::string link = LaunchLink::launchURL(session).toEncoded().toStdString();
    EXPECT_EQ(output({u"session"_s, u"--make-link"_s, session}), link + '\n');
    EXPECT_EQ(output({u"session"_s, u"--make-link"_s, session, u"--json"_s}), "{\"link\":\"" + link + "\"}\n");
    const QString argument = QString::fromStdString(link);
    EXPECT_EQ(output({u"session"_s, u"--link"_s, argument}), session.toStdString() + '\n');
    EXPECT_EQ(output({u"session"_s, u"--link"_s, argument, u"--json"_s}),
              "{\"file\":\"" + session.toStdString() + "\"}\n");
    expectFailure({u"session"_s, u"--link"_s, u"lintora://floating?session=/dev/zero"_s}, 1, "字幕会话位置无效。\n");
    for (const QStringList &arguments : {QStringList{u"session"_s}, {u"session"_s, u"a"_s, u"--link"_s, argument}})
        EXPECT_EQ(CommandLine::run(arguments).status, 2);
}

TEST_F(StoreCommandsTest, presets_are_added_shown_replaced_and_removed)
{
    EXPECT_EQ(output({u"presets"_s, u"--json"_s}), "[]\n");
    EXPECT_EQ(output({u"presets"_s, u"add"_s, u" 访谈 "_s, u"--font-size"_s, u"60"_s, u"--stroke"_s}),
              "访谈：PingFang SC，60 磅（3840 × 2160）\n");
    const QUuid id = StylePresetStore().load().first().id;
    output({u"presets"_s, u"add"_s, u"访谈"_s, u"--size"_s, u"1080x1920"_s});
    output({u"presets"_s, u"add"_s, u"字幕条"_s});
    const QList<SubtitleStylePreset> presets = StylePresetStore().load();
    ASSERT_EQ(presets.size(), 2);
    EXPECT_EQ(presets[0], (SubtitleStylePreset{.id = id, .name = u"访谈"_s, .style = {.width = 1080, .height = 1920}}));
    const std::string json = FileReader::readAll(Locations::stylePresets()).toStdString() + '\n';
    EXPECT_EQ(output({u"presets"_s, u"list"_s, u"--json"_s}), json);
    expectFailure({u"presets"_s, u"remove"_s, u"没有"_s}, 1, "没有名为“没有”的样式预设。\n");
    output({u"presets"_s, u"remove"_s, u"访谈"_s, u"--json"_s});
    EXPECT_EQ(StylePresetStore().load(), presets.sliced(1));
    EXPECT_EQ(CommandLine::run({u"presets"_s, u"add"_s}).status, 2);
}

TEST_F(StoreCommandsTest, every_field_of_a_record_and_of_a_preset_comes_through)
{
    // Each field has another value than it has by itself.
    const Options record{.rate = FrameRate::all().front(),
                         .width = 1280,
                         .height = 720,
                         .font = u"甲"_s,
                         .fontSize = 33,
                         .fontColor = u"0 1 0 1"_s,
                         .strokeEnabled = true,
                         .strokeColor = u"0 0 1 1"_s,
                         .strokeWidth = 7,
                         .shadowEnabled = true,
                         .shadowColor = u"1 0 0 1"_s,
                         .shadowBlur = 11,
                         .bottomPercent = 21,
                         .shiftMS = 1'000,
                         .name = u"乙"_s,
                         .titleRole = u"titles.丙"_s,
                         .fontFace = u"Bold"_s};
    const QString path = file(u"样式.json"_s, jsonBytes([&](JsonWriter &json) { writeOptions(json, record); }));
    const auto saved = [&](const QStringList &options) {
        output(QStringList{u"presets"_s, u"add"_s, u"P"_s} + options);
        return StylePresetStore().load().last().style;
    };
    EXPECT_EQ(saved({u"--options"_s, path}), record);
    // A preset is fitted to the height before the single options set another.
    Options preset = StylePresetStore().load().last().applying(Options());
    EXPECT_TRUE(preset.strokeEnabled && preset.shadowEnabled);
    EXPECT_EQ(saved({u"--preset"_s, u"P"_s}), preset);
    const QString cues = file(u"字幕.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n一\n");
    const auto titles = [&](const QStringList &options) { return output(QStringList{u"titles"_s, cues} + options); };
    const auto written = [&](const Options &options) {
        return FCPXML::convert(SRT::decode(FileReader::readAll(cues)), std::nullopt, options).toUtf8().toStdString();
    };
    EXPECT_EQ(titles({u"--options"_s, path}), written(record));
    EXPECT_EQ(titles({u"--preset"_s, u"P"_s}), written(preset));
}

TEST_F(StoreCommandsTest, a_preset_stands_between_the_record_and_the_single_options)
{
    output({u"presets"_s, u"add"_s, u"P"_s, u"--font"_s, u"Preset"_s, u"--font-size"_s, u"60"_s, u"--name"_s, u"P"_s});
    const QString record = file(u"样式.json"_s, jsonBytes([](JsonWriter &json) {
                                    writeOptions(json, {.width = 1920, .height = 1080, .font = u"Record"_s});
                                }));
    const auto style = [&](const QStringList &options) {
        // A preset saved from these options holds what they come to.
        output(QStringList{u"presets"_s, u"add"_s, u"result"_s} + options);
        return StylePresetStore().load().last().style;
    };
    const QStringList preset{u"--preset"_s, u" P "_s};
    const Options onRecord = style(preset + QStringList{u"--options"_s, record, u"--face"_s, u"Bold"_s});
    EXPECT_EQ(onRecord,
              (Options{.width = 1920, .height = 1080, .font = u"Preset"_s, .fontSize = 30, .fontFace = u"Bold"_s}));
    EXPECT_EQ(style(QStringList{u"--font"_s, u"Single"_s} + preset).font, u"Single"_s);
    expectFailure({u"titles"_s, u"-"_s, u"--preset"_s, u"没有"_s}, 1, "没有名为“没有”的样式预设。\n",
                  "1\n00:00:01,000 --> 00:00:02,000\nA\n");
}
