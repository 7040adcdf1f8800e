// A title of the user's own in the place of the style.

#include "app/Lintora/look/TitleListModel.h"
#include "tests/app/Lintora/look/StyleTest.h"
#include "tests/support/Events.h"
#include "tests/support/StoryDocument.h"

#include <QLabel>
#include <QListView>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class TitleLook : public StyleTest
{
protected:
    static Tag title(const QByteArray &time, const QByteArray &text, const QByteArray &font)
    {
        return tag("title ref=own lane=1 duration=1s offset=" + time,
                   {tag("text", {textTag("text-style ref=ts1", text)}),
                    tag("text-style-def id=ts1", {tag("text-style font=" + font)})});
    }

    void loadProject()
    {
        model.load(outside.file(
            u"own.fcpxml"_s,
            StoryDocument::project(
                "20s",
                {tag("gap offset=0s duration=20s", {title("1s", "姓名", "Kaiti"), title("3s", "职务", "Songti")})},
                {tag("effect id=own name=人名条 uid=a.moti")})));
        settle();
    }

    QListView *list() const { return find<QListView>(u"项目中的标题"_s); }
    QString said(const QString &label) const { return find<QLabel>(label) ? find<QLabel>(label)->text() : QString(); }
};

TEST_F(TitleLook, is_chosen_by_the_keyboard_shown_by_name_and_taken_back)
{
    loadProject();
    EXPECT_EQ(said(u"标题模板"_s), u"基本字幕"_s);
    const int before = steps();
    click(u"选用标题…"_s);
    settle();
    ASSERT_NE(list(), nullptr);
    EXPECT_EQ(list()->currentIndex().data(Qt::DisplayRole), u"姓名"_s);
    EXPECT_EQ(list()->currentIndex().data(TitleListModel::asideRole), u"人名条 · 1 条标题"_s);
    EXPECT_TRUE(said(u"预览提示"_s).contains(u"“人名条”的动画、图形与准确位置请在 FCP 里看"_s));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(said(u"标题模板"_s), u"人名条"_s);
    EXPECT_TRUE(model.look()->xml.contains("Songti"));
    EXPECT_EQ(model.pictured().font, u"Songti"_s);
    EXPECT_EQ(field(u"字号"_s), nullptr) << "the title brings its style";
    EXPECT_EQ(steps(), before + 1);
    click(u"恢复基本字幕"_s);
    EXPECT_EQ(model.look(), std::nullopt);
    EXPECT_NE(field(u"字号"_s), nullptr);
    EXPECT_FALSE(said(u"预览提示"_s).contains(u"人名条"_s));
    model.undo();
    EXPECT_EQ(said(u"标题模板"_s), u"人名条"_s);
}

TEST_F(TitleLook, is_left_as_it_was_by_Escape_and_asks_for_a_project_where_there_is_none)
{
    click(u"选用标题…"_s);
    EXPECT_TRUE(said(u"标题列表提示"_s).contains(u"还没有导入 FCP 项目"_s));
    outside.answer = outside.file(u"bad.fcpxml"_s, "<fcpxml/>").toLocalFile();
    click(u"其他项目…"_s);
    settle();
    EXPECT_EQ(outside.openings.last(), u"选择含有标题的 FCP 项目"_s);
    EXPECT_FALSE(said(u"标题列表提示"_s).isEmpty());
    loadProject();
    outside.answer = outside.path(u"own.fcpxml"_s);
    click(u"其他项目…"_s);
    settle();
    ASSERT_NE(list(), nullptr);
    EXPECT_EQ(said(u"标题来源"_s), u"“own.fcpxml”中的标题：选一个，每条字幕都照它的样子写入"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(model.look(), std::nullopt);
    EXPECT_EQ(list(), nullptr);
    EXPECT_NE(field(u"字号"_s), nullptr);
}

} // namespace
