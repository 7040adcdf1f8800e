// Styles kept under a name.

#include "app/Lintora/look/PresetListModel.h"
#include "tests/app/Lintora/look/StyleTest.h"
#include "tests/support/Events.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QListView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class PresetShelfTest : public StyleTest
{
protected:
    PresetShelfTest()
    {
        const auto note = [this] { ++m_told; };
        QObject::connect(&model.stylePresets(), &StylePresets::changed, workspace, note);
        QObject::connect(&model, &LintoraModel::failureChanged, workspace, note);
    }

    /// Saves the style under a name, by the button and the keyboard.
    void save(const QString &name)
    {
        click(u"保存预设…"_s);
        type(u"名称"_s, name);
        press(Qt::Key_Return);
    }

    void saveNew(const QString &name)
    {
        save(name);
        finish();
    }

    /// Waits until presets have changed, or were not to be changed, since the last call.
    void finish()
    {
        ASSERT_TRUE(Events::waitFor([this] { return m_told > 0; }));
        Events::handle();
        m_told = 0;
    }

    void setSize(double size)
    {
        Options options = model.options();
        options.fontSize = size;
        model.setOptions(options);
    }

    QListView *list() const { return find<QListView>(u"样式预设"_s); }
    QPoint place(int row) const { return list()->visualRect(list()->model()->index(row, 0)).center(); }
    void select(int row) { QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place(row)); }
    QString status() const
    {
        return model.failure().value_or(model.message());
    } ///< As the window's status line has it.

    QStringList names()
    {
        QStringList names;
        for (const SubtitleStylePreset &each : model.stylePresets().all())
            names += each.name;
        return names;
    }

private:
    int m_told = 0;
};

TEST_F(PresetShelfTest, a_style_is_saved_under_a_name_and_applied_again)
{
    EXPECT_EQ(list(), nullptr);
    setSize(90);
    saveNew(u" 大字 "_s);
    EXPECT_EQ(status(), u"已保存样式预设“大字”"_s);
    EXPECT_EQ(names(), QStringList(u"大字"_s));
    setSize(20);
    const int before = steps();
    click(u"套用"_s);
    EXPECT_EQ(model.options().fontSize, 90) << "what was saved is selected";
    EXPECT_EQ(status(), u"已套用样式预设“大字”"_s);
    EXPECT_EQ(steps(), before + 1);

    setSize(20);
    select(0);
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place(0));
    EXPECT_EQ(model.options().fontSize, 90);
    setSize(20);
    list()->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(model.options().fontSize, 90);
    const QAbstractItemModelTester tester(list()->model());
}

TEST_F(PresetShelfTest, a_name_that_exists_is_replaced_only_when_that_is_wanted)
{
    saveNew(u"片名"_s);
    const SubtitleStylePreset first = model.stylePresets().all().first();
    setSize(77);
    save(u"片名"_s);
    EXPECT_EQ(model.stylePresets().all().first(), first);
    EXPECT_TRUE(visibleTexts().contains(u"替换“片名”？"_s));
    click(u"取消"_s);
    EXPECT_EQ(model.stylePresets().all().first(), first);
    save(u"片名"_s);
    click(u"替换"_s);
    finish();
    ASSERT_EQ(model.stylePresets().all().size(), 1);
    EXPECT_EQ(model.stylePresets().all().first().id, first.id);
    EXPECT_EQ(model.stylePresets().all().first().style.fontSize, 77);
}

TEST_F(PresetShelfTest, a_name_that_cannot_be_is_told_where_it_is_typed)
{
    click(u"保存预设…"_s);
    for (const auto &[name, sentence] : {std::pair(u""_s, u"请输入名称。"_s), std::pair(u"  "_s, u"请输入名称。"_s),
                                         std::pair(QString(61, u'长'), u"名称最多 60 个字。"_s)}) {
        type(u"名称"_s, name);
        press(Qt::Key_Return);
        EXPECT_TRUE(visibleTexts().contains(sentence)) << qPrintable(name);
    }
    type(u"名称"_s, QString(60, u'长'));
    press(Qt::Key_Return);
    finish();
    EXPECT_EQ(names(), QStringList(QString(60, u'长')));
    click(u"保存预设…"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(field(u"名称"_s), nullptr);
    EXPECT_TRUE(model.window().settingsVisible()) << "only the question is left";
}

TEST_F(PresetShelfTest, presets_are_renamed_removed_and_brought_back)
{
    for (const QString &name : {u"一"_s, u"二"_s, u"三"_s})
        saveNew(name);
    select(1);
    click(u"改名…"_s);
    EXPECT_EQ(field(u"名称"_s)->text(), u"二"_s);
    type(u"名称"_s, u"三"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(visibleTexts().contains(u"已有同名的样式预设，请换一个名称。"_s));
    type(u"名称"_s, u"贰"_s);
    click(u"改名"_s);
    finish();
    EXPECT_EQ(names(), QStringList({u"一"_s, u"贰"_s, u"三"_s}));
    EXPECT_EQ(find<QAbstractButton>(u"撤销删除"_s), nullptr);
    click(u"删除"_s);
    finish();
    EXPECT_EQ(names(), QStringList({u"一"_s, u"三"_s}));
    EXPECT_EQ(status(), u"已删除样式预设“贰”，可撤销"_s);
    click(u"撤销删除"_s);
    finish();
    EXPECT_EQ(names(), QStringList({u"一"_s, u"贰"_s, u"三"_s}));
    list()->setFocus();
    press(Qt::Key_Delete);
    finish();
    EXPECT_EQ(names(), QStringList({u"一"_s, u"三"_s})) << "what came back is selected";
}

TEST_F(PresetShelfTest, a_file_that_cannot_be_read_at_the_start_is_told)
{
    outside.file(u"StylePresets.json"_s, "[{\"id\":");
    LintoraModel started(outside.surroundings());
    EXPECT_TRUE(started.message().startsWith(u"样式预设未能读取："_s));
    EXPECT_TRUE(started.stylePresets().all().isEmpty());
}

TEST_F(PresetShelfTest, a_file_that_cannot_be_read_is_left_alone)
{
    saveNew(u"片名"_s);
    const QList<SubtitleStylePreset> before = model.stylePresets().all();
    outside.file(u"StylePresets.json"_s, "[{\"id\":");
    saveNew(u"另一个"_s);
    EXPECT_EQ(model.stylePresets().all(), before);
    EXPECT_TRUE(model.failure().has_value());
    QFile file(outside.path(u"StylePresets.json"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "[{\"id\":");
}

} // namespace
