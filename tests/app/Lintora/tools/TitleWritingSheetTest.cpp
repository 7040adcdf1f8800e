#include "app/Lintora/drag/CardRow.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/StoryDocument.h"

#include <QListView>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

Tag title(const QByteArray &offset, const QByteArray &text)
{
    return tag("title ref=title lane=1 duration=1s offset=" + offset,
               {tag("text", {textTag("text-style ref=ts1", text)})});
}

class TitleWritingSheets : public PanelTest
{
protected:
    void wait()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.activity(); }));
        Events::handle();
    }

    QStringList lines() const
    {
        const auto *const list = find<QListView>(u"将要写入"_s);
        QStringList lines;
        for (int row = 0; list && row < list->model()->rowCount(); ++row)
            lines += list->model()->index(row, 0).data().toString();
        return lines;
    }
};

TEST_F(TitleWritingSheets, titles_are_read_by_a_button_and_written_back_after_a_look)
{
    model.load(outside.file(
        u"成片.fcpxml"_s, StoryDocument::project(
                              "20s", {tag("gap offset=0s duration=20s", {title("1s", "你好"), title("5s", "再见")})})));
    wait();
    click(u"读取其中的 2 条字幕"_s);
    wait();
    EXPECT_EQ(texts(), (QStringList{u"你好"_s, u"再见"_s}));
    EXPECT_EQ(button(u"读取其中的 2 条字幕"_s), nullptr);
    model.setText(0, u"大家\n好"_s);
    model.setTimes(1, 6'000, 7'000);
    const auto *const menu = panel->findChild<CardRow *>()->findChild<QMenu *>();
    for (QAction *const action : menu->actions()) {
        if (action->text() == u"写回项目标题…")
            action->trigger();
    }
    wait();
    EXPECT_EQ(lines(), (QStringList{u"第 1 条：你好 → 大家 / 好"_s, u"移动 第 2 条：00:00:05,000 → 00:00:06,000"_s}));
    click(u"时间的改动、新增与删除也写入"_s);
    wait();
    EXPECT_EQ(model.titleWriting().status(), u"1 条文字改动 · 移动 1 条"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.titleWriting().isShown());
    EXPECT_TRUE(table().hasFocus());
}

} // namespace
