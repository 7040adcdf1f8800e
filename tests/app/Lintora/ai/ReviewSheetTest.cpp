#include "app/Lintora/ai/ReviewSheet.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/Proofreader.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class ReviewSheetTest : public PanelTest
{
protected:
    ReviewSheetTest()
    {
        AIChoices choices;
        choices.aiUseOnline = true;
        choices.aiAPIBaseURL = service.address();
        choices.aiAPIModel = u"chat"_s;
        model.aiSettings().choose(choices);
    }

    const ReviewSheet *sheet() const { return panel->findChild<ReviewSheet *>(); }
    QListView *list() const { return find<QListView>(u"校对结果"_s); }
    ComparedRow row(int index) const
    {
        return list()->model()->index(index, 0).data(MarkedTextDelegate::comparedRole).value<ComparedRow>();
    }
    QString note() const
    {
        for (const QLabel *const label : sheet()->findChildren<QLabel *>()) {
            if (label->isVisible() && label->accessibleName() == u"状态"_s)
                return label->text();
        }
        return {};
    }

    void proofread()
    {
        load({u"大家好"_s, u"今天我们聊聊条色"_s, u"一共 30 个镜头"_s});
        click(u"AI 校对"_s);
        click(u"开始校对"_s);
        ASSERT_TRUE(Events::waitFor([&] { return !model.review().isRunning(); }));
        Events::handle();
    }

    Proofreader service{{{u"今天我们聊聊条色"_s, u"今天我们聊聊调色"_s}, {u"一共 30 个镜头"_s, u"一共 13 个镜头"_s}}};
};

} // namespace

TEST_F(ReviewSheetTest, shows_what_would_change_and_marks_what_is_risky)
{
    proofread();
    ASSERT_NE(list(), nullptr);
    const QAbstractItemModelTester tester(list()->model());
    ASSERT_EQ(list()->model()->rowCount(), 2);
    EXPECT_EQ(row(0).number, u"2"_s);
    EXPECT_EQ(row(0).after, u"今天我们聊聊调色"_s);
    EXPECT_EQ(row(0).beforeMarks, (QList<TextDifference::Stretch>{{.start = 6, .length = 1}}));
    EXPECT_EQ(row(0).warning, QString());
    EXPECT_EQ(row(1).warning, u"请确认"_s);
    EXPECT_TRUE(list()->model()->index(1, 0).data(Qt::ToolTipRole).toString().startsWith(u"请先确认：数字有改动"_s));
    EXPECT_EQ(note(), u"已校对 3 条，2 条有改动，其中 1 条请先确认"_s);
    click(u"仅看有修改"_s);
    EXPECT_EQ(list()->model()->rowCount(), 3);
    EXPECT_FALSE(list()->model()->index(0, 0).flags() & Qt::ItemIsUserCheckable);
}

TEST_F(ReviewSheetTest, rows_are_ticked_by_mouse_and_keyboard_applied_and_taken_back)
{
    proofread();
    EXPECT_NE(button(u"应用勾选 · 1"_s), nullptr);
    const QRect second = list()->visualRect(list()->model()->index(1, 0));
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, Qt::NoModifier, second.topLeft() + QPoint(16, 16));
    EXPECT_NE(button(u"应用勾选 · 2"_s), nullptr);
    list()->setFocus();
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    EXPECT_NE(button(u"应用勾选 · 1"_s), nullptr);
    click(u"全不选"_s);
    EXPECT_NE(button(u"应用勾选 · 0"_s), nullptr);
    click(u"应用勾选 · 0"_s);
    EXPECT_EQ(note(), u"请先勾选要修改的字幕"_s);
    click(u"全选"_s);
    click(u"应用勾选 · 2"_s);
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天我们聊聊调色"_s, u"一共 13 个镜头"_s}));
    click(u"撤销应用"_s);
    EXPECT_EQ(texts().last(), u"一共 30 个镜头"_s);
    EXPECT_TRUE(sheet()->isAncestorOf(QApplication::focusWidget()));
    // Changed meanwhile: to compare only.
    model.setText(0, u"各位好"_s);
    EXPECT_FALSE(button(u"应用勾选 · 2"_s)->isEnabled());
    EXPECT_EQ(list()->model()->rowCount(), 2);
}

TEST_F(ReviewSheetTest, work_goes_on_behind_a_closed_sheet_and_is_cancelled_from_within)
{
    service.isSilent = true;
    load({u"大家好"_s});
    click(u"AI 校对"_s);
    click(u"开始校对"_s);
    ASSERT_TRUE(service.waitForConnections(1));
    EXPECT_FALSE(button(u"开始校对"_s)->isEnabled());
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().aiPresented());
    EXPECT_TRUE(model.aiBusy());
    click(u"AI 校对"_s);
    for (QAbstractButton *const cancel : sheet()->findChildren<QAbstractButton *>()) {
        if (cancel->isVisible() && cancel->text() == u"取消"_s)
            QTest::mouseClick(cancel, Qt::LeftButton);
    }
    EXPECT_FALSE(model.aiBusy());
    EXPECT_TRUE(button(u"开始校对"_s)->isEnabled());
    EXPECT_TRUE(model.review().aiReviewRows().isEmpty());
}
