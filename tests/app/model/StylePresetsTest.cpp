#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"

using namespace Qt::StringLiterals;

using StylePresetsTest = ModelTest;

TEST_F(StylePresetsTest, a_style_is_saved_under_a_name_and_replaces_its_namesake)
{
    model->saveStylePreset(u" 片头 "_s);
    EXPECT_TRUE(Events::waitFor([&] { return model->stylePresets().all().size() == 1; }));
    const QUuid id = model->stylePresets().all().first().id;
    model->setCanvasHeight(1'080);
    model->saveStylePreset(u"片头"_s);
    EXPECT_TRUE(Events::waitFor([&] { return model->stylePresets().all().first().style.height == 1'080; }));
    EXPECT_EQ(model->stylePresets().all().first().id, id);
    EXPECT_EQ(restart().stylePresets().all().size(), 1);
    model->saveStylePreset({});
    EXPECT_TRUE(Events::waitFor([&] { return model->failure().has_value(); }));
    EXPECT_EQ(failure(), u"样式预设内容无效，请检查字号与位置。"_s);
}

TEST_F(StylePresetsTest, presets_are_applied_in_proportion_renamed_removed_and_brought_back)
{
    const auto names = [&] {
        QStringList list;
        for (const SubtitleStylePreset &preset : model->stylePresets().all())
            list += preset.name;
        return list;
    };
    const auto becomes = [&](const QStringList &list) { return Events::waitFor([&] { return names() == list; }); };
    // One right after the other: neither save may lose the other's.
    model->saveStylePreset(u"甲"_s);
    model->saveStylePreset(u"乙"_s);
    ASSERT_TRUE(becomes({u"甲"_s, u"乙"_s}));
    const QUuid first = model->stylePresets().all().first().id;

    Options portrait = model->options();
    portrait.height = portrait.height / 2;
    portrait.fontSize = 5;
    model->setOptions(portrait);
    model->applyStylePreset(first);
    EXPECT_EQ(model->options().fontSize, 24);
    EXPECT_EQ(model->message(), u"已套用样式预设“甲”"_s);
    model->undo();
    EXPECT_EQ(model->options().fontSize, 5);

    model->stylePresets().rename(first, u"乙"_s);
    EXPECT_TRUE(Events::waitFor([&] { return failure() == u"已有同名的样式预设，请换一个名称。"_s; }));
    model->stylePresets().rename(first, u"丙\u0001丁"_s);
    EXPECT_TRUE(Events::waitFor([&] { return failure() == u"样式预设内容无效，请检查字号与位置。"_s; }));
    model->stylePresets().rename(first, u" 丙 "_s);
    EXPECT_TRUE(becomes({u"丙"_s, u"乙"_s}));
    model->stylePresets().remove(first);
    EXPECT_TRUE(becomes({u"乙"_s}));
    model->stylePresets().restore();
    EXPECT_TRUE(becomes({u"丙"_s, u"乙"_s}));
    EXPECT_FALSE(model->stylePresets().canRestore());

    write(u"Library/Application Support/Lintora/StylePresets.json"_s, "[");
    model->stylePresets().remove(first);
    EXPECT_TRUE(Events::waitFor([&] { return model->failure().has_value(); }));
    EXPECT_EQ(names().size(), 2) << "an unreadable file leaves the list alone";
}
