// Which cues are shown, and how the next one of a kind is reached.

#include "app/Lintora/KeysSheet.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

class CueSearch : public PanelTest
{
protected:
    /// How many cues the heading says are shown; empty while all are.
    QString count() const
    {
        const auto *const label = find<QLabel>(u"显示的字幕"_s);
        return label ? label->text() : QString();
    }

    QLineEdit *filter() const { return find<QLineEdit>(u"筛选字幕"_s); }

    void findNext(Qt::KeyboardModifiers modifiers = Qt::ControlModifier) const { press(Qt::Key_G, modifiers); }
};

const QString tooFast(30, u'快'); // in two seconds

TEST_F(CueSearch, only_cues_with_warnings_are_shown_until_another_choice)
{
    load({u"好"_s, tooFast, u"行"_s, tooFast + u'二'});
    EXPECT_EQ(count(), QString());
    click(u"只看提醒"_s);
    EXPECT_EQ(table().shownCues(), 2);
    EXPECT_EQ(count(), u"2 / 4"_s);
    edit(0);
    editor()->selectAll();
    type(u"慢"_s);
    press(Qt::Key_Return);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->toPlainText(), tooFast + u'二') << "what was mended stays in sight, and the next one follows";
    press(Qt::Key_Escape);
    EXPECT_EQ(table().shownCues(), 2);
    filter()->setText(u"二"_s);
    Events::handle();
    EXPECT_EQ(count(), u"1 / 4"_s);
    filter()->clear();
    EXPECT_EQ(count(), u"1 / 4"_s);
    model.deleteCues({3});
    Events::handle();
    EXPECT_EQ(count(), u"0 / 3"_s);
    load({u"一"_s, tooFast});
    EXPECT_EQ(count(), QString()) << "another session is shown whole";
    EXPECT_EQ(table().shownCues(), 2);
}

TEST_F(CueSearch, warnings_are_gone_through_from_the_current_cue_on)
{
    load({tooFast, u"好"_s, tooFast, u"行"_s});
    QList<int> places;
    for (int i = 0; i < 3; ++i) {
        press(Qt::Key_Semicolon, Qt::ControlModifier);
        places += *table().currentCue();
    }
    EXPECT_EQ(places, (QList<int>{2, 0, 2}));
    model.deleteCues({0, 2});
    Events::handle();
    press(Qt::Key_Semicolon, Qt::ControlModifier);
    EXPECT_EQ(status(), u"没有需要留意的字幕"_s);
}

TEST_F(CueSearch, the_next_hit_is_found_among_all_cues_and_counted)
{
    load({u"苹果"_s, u"香蕉"_s, u"Apple"_s, u"苹果派"_s});
    findNext();
    ASSERT_TRUE(filter()->hasFocus()) << "it is not known what to look for";
    type(u"苹果"_s);
    EXPECT_EQ(count(), u"2 / 4"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(table().shownCues(), 4);
    findNext();
    EXPECT_EQ(table().currentCue(), 3);
    EXPECT_EQ(status(), u"“苹果”：第 2 条，共 2 条"_s);
    findNext();
    EXPECT_EQ(table().currentCue(), 0);
    findNext(Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(table().currentCue(), 3);
    // What the sheet looks for is looked for without it too.
    model.window().setFindReplaceVisible(true);
    find<QLineEdit>(u"关键词"_s)->setText(u"apple"_s);
    press(Qt::Key_Escape);
    edit(3);
    editor()->selectAll();
    type(u"苹果酱"_s);
    table().findNext();
    EXPECT_EQ(table().currentCue(), 2);
    EXPECT_EQ(texts().last(), u"苹果酱"_s) << "what was being typed is kept";
    model.deleteCues({2});
    table().findNext();
    EXPECT_EQ(status(), u"没有找到“apple”"_s);
}

TEST_F(CueSearch, the_keys_are_listed_as_the_menus_have_them)
{
    load({u"一"_s});
    model.window().menuKeys = [] {
        return QList<WindowState::MenuKey>{{.menu = u"编辑"_s, .title = u"拆分"_s, .keys = u"Ctrl+K"_s}};
    };
    model.window().setKeysVisible(true);
    QStringList shown;
    for (const QLabel *const label : panel->findChild<KeysSheet *>()->findChildren<QLabel *>())
        shown += label->text();
    for (const QString &wanted : {u"编辑"_s, u"拆分"_s, u"Ctrl+K"_s, u"在文字里换行"_s})
        EXPECT_TRUE(shown.contains(wanted)) << qPrintable(wanted);
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().keysVisible());
    EXPECT_TRUE(table().hasFocus());
}

} // namespace
