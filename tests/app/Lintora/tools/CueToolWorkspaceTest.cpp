#include "app/Lintora/tools/CueToolWorkspace.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class CueToolSheets : public PanelTest
{
protected:
    QListView *preview() const { return find<QListView>(u"预览"_s); }

    void wait()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.activity(); }));
        Events::handle();
    }

    void open(CueTools::Tool tool)
    {
        model.cueTools().open(tool);
        wait();
        ASSERT_NE(preview(), nullptr);
    }

    QString row(int row) const { return preview()->model()->index(row, 0).data().toString(); }
};

TEST_F(CueToolSheets, breaking_follows_the_typed_width)
{
    load({u"我觉得这个方案不错不过预算可能不够"_s, u"好"_s});
    open(CueTools::Tool::breaking);
    QAbstractItemModelTester tester(preview()->model());
    EXPECT_EQ(row(0), u"我觉得这个方案不错不过预算可能不够\n↓\n我觉得这个方案不错 ┃ 不过预算可能不够"_s);
    auto *const width = find<QLineEdit>(u"每行宽度"_s);
    ASSERT_NE(width, nullptr);
    EXPECT_TRUE(width->hasFocus());
    width->selectAll();
    type(u"20"_s);
    press(Qt::Key_Return);
    wait();
    EXPECT_EQ(preview()->model()->rowCount(), 0);
    EXPECT_FALSE(button(u"应用"_s)->isEnabled());
    width->selectAll();
    type(u"10"_s);
    press(Qt::Key_Return);
    wait();
    click(u"应用"_s);
    wait();
    EXPECT_EQ(texts(), (QStringList{u"我觉得这个方案不错"_s, u"不过预算可能不够"_s, u"好"_s}));
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.cueTools().tool());
    EXPECT_TRUE(table().hasFocus());
}

TEST_F(CueToolSheets, findings_are_ticked_and_lead_to_their_cues)
{
    load({u"好"_s, u"你好,世界"_s, u"（再见"_s});
    open(CueTools::Tool::checking);
    QAbstractItemModelTester tester(preview()->model());
    ASSERT_EQ(preview()->model()->rowCount(), 2);
    EXPECT_FALSE(preview()->model()->index(1, 0).flags().testFlag(Qt::ItemIsUserCheckable));
    ASSERT_NE(button(u"修复勾选 · 1"_s), nullptr);
    preview()->setCurrentIndex(preview()->model()->index(0, 0));
    preview()->setFocus();
    press(Qt::Key_Space);
    ASSERT_NE(button(u"修复勾选 · 0"_s), nullptr);
    EXPECT_FALSE(button(u"修复勾选 · 0"_s)->isEnabled());
    click(u"全选"_s);
    click(u"修复勾选 · 1"_s);
    wait();
    EXPECT_EQ(texts(), (QStringList{u"好"_s, u"你好，世界"_s, u"（再见"_s}));
    const QPoint row = preview()->visualRect(preview()->model()->index(0, 0)).center();
    QTest::mouseClick(preview()->viewport(), Qt::LeftButton, {}, row); // a second click alone is a first one
    QTest::mouseDClick(preview()->viewport(), Qt::LeftButton, {}, row);
    EXPECT_FALSE(model.cueTools().tool());
    EXPECT_EQ(table().currentCue(), 2);
}

TEST_F(CueToolSheets, the_script_follows_the_choice)
{
    load({u"張國榮的頭髮"_s});
    open(CueTools::Tool::script);
    EXPECT_EQ(preview()->model()->rowCount(), 1);
    find<QLineEdit>(u"保留的专名"_s)->setText(u"張國榮， 鄧麗君"_s);
    wait();
    click(u"转换"_s);
    wait();
    EXPECT_EQ(texts(), QStringList{u"張國榮的头发"_s});
}

TEST_F(CueToolSheets, all_limits_are_on_a_page_of_their_own)
{
    load({u"你好,世界"_s, u"（再见"_s});
    open(CueTools::Tool::checking);
    click(u"全部限值"_s);
    EXPECT_EQ(preview(), nullptr) << "the page is in its place";
    click(u"括号引号不成对"_s);
    auto *const rules = find<ChoiceBox>(u"规则"_s);
    ASSERT_NE(rules, nullptr);
    EXPECT_EQ(rules->currentText(), u"自定"_s);
    auto *const terms = find<QLineEdit>(u"术语"_s);
    ASSERT_NE(terms, nullptr);
    terms->setFocus();
    terms->selectAll();
    type(u"再见/再會，After Effects/AE"_s);
    press(Qt::Key_Return);
    const CheckLimits own = model.cueTools().settings().limits;
    EXPECT_EQ(own.terms, (QList<QStringList>{{u"再见"_s, u"再會"_s}, {u"After Effects"_s, u"AE"_s}}));
    EXPECT_FALSE(own.looksAt(CheckRule::brackets));
    click(u"全部限值"_s);
    wait();
    EXPECT_EQ(preview()->model()->rowCount(), 1);
    rules->setFocus();
    press(Qt::Key_Home);
    wait();
    EXPECT_EQ(model.cueTools().settings().limits, CheckLimits::builtIn().front());
    EXPECT_EQ(preview()->model()->rowCount(), 2);
}

TEST_F(CueToolSheets, a_refused_file_is_offered_with_what_would_be_done_to_it)
{
    load({u"一"_s});
    const QString path = outside.path(u"坏.srt"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("1\n00:00:01.5 --> 00:00:02,000\n新\n");
    file.close();
    model.load(QUrl::fromLocalFile(path));
    wait();
    ASSERT_NE(button(u"修复并打开…"_s), nullptr);
    click(u"修复并打开…"_s);
    wait();
    auto *const repairs = find<QListView>(u"修复内容"_s);
    ASSERT_NE(repairs, nullptr);
    EXPECT_GE(repairs->model()->rowCount(), 1);
    EXPECT_EQ(find<ChoiceBox>(u"编码"_s)->currentData().toString(), u"UTF-8"_s);
    EXPECT_EQ(texts(), QStringList{u"一"_s});
    click(u"修复并打开"_s);
    wait();
    EXPECT_EQ(texts(), QStringList{u"新"_s});
    EXPECT_EQ(button(u"修复并打开…"_s), nullptr);
}

} // namespace
