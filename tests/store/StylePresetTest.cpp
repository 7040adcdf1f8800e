#include "store/StylePresetStore.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/FileReader.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "tests/support/Unprivileged.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const std::string invalidContent = "样式预设内容无效，请检查字号与位置。";
const std::string invalidColor = "样式预设的颜色无效。";
const std::string invalidList = "样式预设数量或编号无效。";

SubtitleStylePreset preset(const QString &name = u"访谈"_s, const Options &style = {})
{
    return {.id = QUuid::createUuid(), .name = name, .style = style};
}

template <class Action>
std::string outcome(Action &&action)
{
    try {
        action();
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    } catch (const PlatformError &) {
        return "platform";
    }
}

std::string validity(const SubtitleStylePreset &preset)
{
    return outcome([&] { preset.validate(); });
}

template <class Value>
std::string validityWith(Value Options::*field, const Value &value)
{
    Options style;
    style.*field = value;
    return validity(preset(u"访谈"_s, style));
}

QByteArray encoded(const QList<SubtitleStylePreset> &presets)
{
    return jsonBytes([&](JsonWriter &json) { writeSubtitleStylePresets(json, presets); });
}

class StylePresetStoreTest : public ::testing::Test
{
protected:
    StylePresetStore store() const { return StylePresetStore(m_folder.filePath(u"Lintora/StylePresets.json"_s)); }

    void put(const QByteArray &content) const
    {
        QDir().mkpath(m_folder.filePath(u"Lintora"_s));
        QFile file(store().file());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    std::string loading() const
    {
        return outcome([&] { store().load(); });
    }

    std::string saving(const QList<SubtitleStylePreset> &presets) const
    {
        return outcome([&] { store().save(presets); });
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST(SubtitleStylePreset, bounds_of_its_numbers)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const auto check = [](double Options::*field, std::initializer_list<double> good,
                          std::initializer_list<double> bad) {
        for (const double value : good)
            EXPECT_EQ(validityWith(field, value), "accepted") << value;
        for (const double value : bad)
            EXPECT_EQ(validityWith(field, value), invalidContent) << value;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    check(&Options::fontSize, {1e-9, 10'000}, {0, -1, 10'000.1, infinity, nan});
    check(&Options::strokeWidth, {0, 20}, {-0.1, 20.1, infinity, nan});
    check(&Options::shadowBlur, {0, 30}, {-0.1, 30.1, infinity, nan});
    check(&Options::bottomPercent, {0, 40}, {-0.1, 40.1, infinity, nan});
    EXPECT_EQ(validityWith<qint64>(&Options::width, 1), "accepted");
    EXPECT_EQ(validityWith<qint64>(&Options::width, 0), invalidContent);
    EXPECT_EQ(validityWith<qint64>(&Options::height, 0), invalidContent);
    EXPECT_EQ(validityWith(&Options::font, QString()), invalidContent);
}

TEST(SubtitleStylePreset, has_a_name_of_1_to_60_characters)
{
    const QString family = u"👨‍👩‍👧"_s; // one character of eight code units
    for (const auto &[name, expected] : {
             std::pair<QString, std::string>{u"字"_s, "accepted"},
             {QString(60, u'字'), "accepted"},
             {QString(61, u'字'), invalidContent},
             {family.repeated(60), "accepted"},
             {family.repeated(61), invalidContent},
             {u"  "_s + QString(60, u'a') + u" \t"_s, "accepted"},
             {QString(), invalidContent},
             {u" \t　"_s, invalidContent},
         })
        EXPECT_EQ(validity(preset(name)), expected) << name.toStdString();
}

TEST(SubtitleStylePreset, has_colours_of_four_numbers)
{
    for (QString Options::*const field : {&Options::fontColor, &Options::strokeColor, &Options::shadowColor}) {
        for (const char *const good : {"1 1 1 1", "0 0.5 1e-3 1.0", "-0 0 0 0"})
            EXPECT_EQ(validityWith(field, QString::fromLatin1(good)), "accepted") << good;
        for (const char *const bad : {"1 1 1", "1 1 1 1.2", "1 1 1 1 1", "1  1 1", "1 1 1 1 ", " 1 1 1 1", "1 1 1 -0.1",
                                      "1 1 1 x", "1 1 1 nan", "1 1 1 inf", "1\t1 1 1", "1 1 1 \t1", "1,1 1 1 1", ""})
            EXPECT_EQ(validityWith(field, QString::fromLatin1(bad)), invalidColor) << bad;
    }
    Options style;
    style.fontColor.clear();
    style.fontSize = 0;
    EXPECT_EQ(validity(preset(u"访谈"_s, style)), invalidContent) << "numbers are checked before colours";
}

TEST(SubtitleStylePreset, applies_style_and_leaves_the_document)
{
    const Options style{.rate = FrameRate::all()[0],
                        .font = u"思源黑体"_s,
                        .fontColor = u"1 0 0 1"_s,
                        .strokeEnabled = true,
                        .strokeColor = u"0 1 0 1"_s,
                        .strokeWidth = 3,
                        .shadowEnabled = true,
                        .shadowColor = u"0 0 1 1"_s,
                        .shadowBlur = 5,
                        .bottomPercent = 20,
                        .shiftMS = 7,
                        .name = u"旧"_s,
                        .titleRole = u"旧"_s,
                        .fontFace = u"Bold"_s};
    const Options target{.rate = FrameRate::all()[2],
                         .width = 1080,
                         .height = 1920,
                         .shiftMS = -3,
                         .name = u"新"_s,
                         .titleRole = u"新"_s,
                         .fontFace = u"Light"_s};
    Options expected = style;
    expected.rate = target.rate;
    expected.width = 1080;
    expected.height = 1920;
    expected.fontSize = 48.0 * 1920 / 2160;
    expected.shiftMS = -3;
    expected.name = expected.titleRole.emplace(u"新"_s);
    const Options applied = preset(u"访谈"_s, style).applying(target);
    EXPECT_DOUBLE_EQ(applied.fontSize, 42.666666666666664);
    expected.fontSize = applied.fontSize;
    EXPECT_EQ(applied, expected);
    EXPECT_EQ(preset().applying({.width = 1920, .height = 1080}).fontSize, 24);
}

TEST(SubtitleStylePresets, saving_under_a_taken_name_replaces_and_keeps_the_id)
{
    const QList<SubtitleStylePreset> before{preset(u"甲"_s), preset(u" 乙 "_s), preset(u"丙"_s)};
    const QList<SubtitleStylePreset> replaced = SubtitleStylePresets::saving(before, u"乙\t"_s, {.fontSize = 60});
    ASSERT_EQ(replaced.size(), 3);
    EXPECT_EQ(replaced[1], (SubtitleStylePreset{.id = before[1].id, .name = u"乙"_s, .style = {.fontSize = 60}}));
    EXPECT_EQ(replaced[0], before[0]);
    const QList<SubtitleStylePreset> added = SubtitleStylePresets::saving(before, u"丁"_s, {});
    ASSERT_EQ(added.size(), 4);
    EXPECT_NE(added[3].id, SubtitleStylePresets::saving(before, u"丁"_s, {})[3].id);
    EXPECT_EQ(outcome([&] { SubtitleStylePresets::saving(before, u"a\u0001b"_s, {}); }), invalidContent);
    EXPECT_EQ(outcome([&] { SubtitleStylePresets::removing(before, u"丁"_s); }), "没有名为“丁”的样式预设。");
    EXPECT_EQ(SubtitleStylePresets::removing(before, u"乙"_s), (QList{before[0], before[2]}));
    EXPECT_EQ(SubtitleStylePresets::removing(before, before[1].id), (QList{before[0], before[2]}));
    EXPECT_EQ(outcome([&] { SubtitleStylePresets::removing(before, QUuid::createUuid()); }), "该样式预设已不存在。");
}

TEST(SubtitleStylePresets, renaming_keeps_the_place_and_never_makes_two_of_one_name)
{
    const QList<SubtitleStylePreset> before{preset(u"甲"_s, {.fontSize = 60}), preset(u" 乙 "_s)};
    const auto renaming = [&](const QUuid &id, const QString &name) {
        return outcome([&] { SubtitleStylePresets::renaming(before, id, name); });
    };
    EXPECT_EQ(SubtitleStylePresets::renaming(before, before[0].id, u" 丙\t"_s),
              (QList{SubtitleStylePreset{.id = before[0].id, .name = u"丙"_s, .style = {.fontSize = 60}}, before[1]}));
    EXPECT_EQ(renaming(before[1].id, u"乙"_s), "accepted") << "its own name";
    EXPECT_EQ(renaming(before[0].id, u"乙"_s), "已有同名的样式预设，请换一个名称。");
    EXPECT_EQ(renaming(before[0].id, u"a\u0001b"_s), invalidContent);
    EXPECT_EQ(renaming(before[0].id, u" "_s), invalidContent);
    EXPECT_EQ(renaming(QUuid::createUuid(), u"丁"_s), "该样式预设已不存在。");
}

TEST_F(StylePresetStoreTest, without_a_file_there_are_none)
{
    EXPECT_TRUE(store().load().isEmpty());
    EXPECT_FALSE(QFile::exists(store().file()));
}

TEST_F(StylePresetStoreTest, keeps_presets_in_order)
{
    QList<SubtitleStylePreset> presets{preset(u"乙"_s), preset(u"甲"_s, {.fontFace = u"Bold"_s})};
    store().save(presets);
    EXPECT_EQ(store().load(), presets);
    EXPECT_EQ(FileReader::readAll(store().file()), encoded(presets));
    store().save({});
    EXPECT_EQ(FileReader::readAll(store().file()), "[]");
}

TEST(SubtitleStylePreset, keeps_a_look_in_a_field_that_others_pass_over)
{
    const TitleTemplate look{
        .effects = {{.name = "人名条", .uid = "~/a.moti", .src = "file:///a"}},
        .xml = "<title ref=\"0\"><text><text-style ref=\"0\"/></text><text-style-def id=\"0\"/></title>"};
    const auto saved = SubtitleStylePresets::saving({}, u"甲"_s, {}, look);
    const auto bytes = jsonBytes([&](JsonWriter &json) { writeSubtitleStylePresets(json, saved); });
    const auto read = [](const QByteArray &data) {
        JsonReader json(data);
        return readSubtitleStylePresets(json);
    };
    EXPECT_EQ(read(bytes), saved);
    EXPECT_EQ(SubtitleStylePresets::renaming(saved, saved[0].id, u"乙"_s)[0].look, look);
    EXPECT_FALSE(SubtitleStylePresets::saving(saved, u"甲"_s, {})[0].look) << "another style takes its place";
    for (const auto &[from, to] :
         {std::pair("<title ref", "<clip ref"), std::pair("</title>", ""),
          std::pair("style ref=\\\"0", "style ref=\\\"1"), std::pair("<text-style ref=\\\"0\\\"/>", "")}) {
        QByteArray wrong = bytes;
        ASSERT_TRUE(wrong.contains(from)) << from;
        EXPECT_THROW(read(wrong.replace(from, to)), PlatformError) << from;
    }
}

TEST_F(StylePresetStoreTest, refuses_files)
{
    const SubtitleStylePreset one = preset();
    QList<SubtitleStylePreset> tooMany;
    for (int i = 0; i < 101; ++i)
        tooMany += preset(QString::number(i));
    SubtitleStylePreset badColor = preset();
    badColor.style.fontColor = u"1 1 1"_s;
    for (const auto &[name, content, expected] : {
             std::tuple<const char *, QByteArray, std::string>{"100 presets", encoded(tooMany.first(100)), "accepted"},
             {"101 presets", encoded(tooMany), invalidList},
             {"the same id twice", encoded({one, one}), invalidList},
             {"an invalid preset", encoded({one, badColor}), invalidColor},
             {"empty file", "", "platform"},
             {"cut off", encoded({one}).chopped(1), "platform"},
             {"an object", "{}", "platform"},
             {"deep nesting", QByteArray(1'000, '[') + QByteArray(1'000, ']'), "platform"},
             {"1 MiB", encoded({one}) + QByteArray(1'048'576 - encoded({one}).size(), ' '), "accepted"},
             {"a byte more", encoded({one}) + QByteArray(1'048'577 - encoded({one}).size(), ' '), "样式预设文件过大。"},
         }) {
        put(content);
        EXPECT_EQ(loading(), expected) << name;
        EXPECT_EQ(saving({one}), expected) << name << ": a file that cannot be read is never replaced";
        EXPECT_EQ(FileReader::readAll(store().file()) == content, expected != "accepted") << name;
    }
}

TEST_F(StylePresetStoreTest, writes_nothing_that_it_would_refuse_to_read)
{
    QList<SubtitleStylePreset> presets;
    for (int i = 0; i < 101; ++i)
        presets += preset(QString::number(i));
    EXPECT_EQ(saving(presets), "最多可保存 100 个样式预设。");
    const SubtitleStylePreset one = preset();
    EXPECT_EQ(saving({one, one}), invalidList);
    EXPECT_EQ(saving({preset(u""_s)}), invalidContent);
    EXPECT_EQ(saving({preset(u"大"_s, {.font = QString(1'048'576, u'a')})}), "样式预设文件过大。");
    EXPECT_FALSE(QFile::exists(store().file()));
    EXPECT_EQ(saving(presets.first(100)), "accepted");
}

TEST(StylePresetStore, a_file_without_permission_is_not_taken_for_none)
{
    const Unprivileged user;
    if (!user.holds())
        GTEST_SKIP() << "needs a process without the administrator's rights";
    const QTemporaryDir folder;
    const StylePresetStore store(folder.filePath(u"StylePresets.json"_s));
    store.save({preset()});
    ASSERT_TRUE(QFile::setPermissions(store.file(), {}));
    EXPECT_THROW(store.load(), PlatformError);
    EXPECT_THROW(store.save({preset()}), PlatformError);
}
