// What is typed into the cells of the table, and what becomes of it.

#include "tests/app/Lintora/cues/CueEditing.h"
#include "tests/support/Events.h"
#include "tests/support/OwnedCues.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

TEST_F(CueEditing, return_opens_the_editor_and_keeps_what_was_typed_and_with_shift_breaks_the_line)
{
    load({u"一"_s, u"二"_s});
    EXPECT_TRUE(table().hasFocus());
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_NE(editor(), nullptr);
    editor()->moveCursor(QTextCursor::End);
    press(Qt::Key_Return, Qt::ShiftModifier);
    type(u"三"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"二\n三"_s}));
    EXPECT_TRUE(table().hasFocus());
}

TEST_F(CueEditing, return_keeps_what_was_typed_and_goes_on_to_the_next_text)
{
    load({u"一"_s, u"别的"_s, u"一二"_s});
    find<QLineEdit>(u"筛选字幕"_s)->setText(u"一"_s);
    editWith(0, u"改过的字幕"_s);
    press(Qt::Key_Return);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->toPlainText(), u"一二"_s) << "the next one in sight";
    EXPECT_EQ(table().selectedCues(), QList<qsizetype>{2});
    press(Qt::Key_Return);
    EXPECT_EQ(editor(), nullptr) << "there is none behind the last";
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(texts(), (QStringList{u"改过的字幕"_s, u"别的"_s, u"一二"_s}));
    model.undo();
    EXPECT_FALSE(model.canUndo() && model.undoTitle() == u"修改文字"_s) << "what was only passed through is no step";
}

TEST_F(CueEditing, tab_goes_from_cell_to_cell_while_one_is_edited_and_else_leaves_the_table)
{
    load({u"一"_s, u"二"_s});
    const auto place = [this] { return std::pair(table().currentCue(), table().currentIndex().column()); };
    QLineEdit *const start = timeField(0, CueTableModel::startColumn);
    start->selectAll();
    type(u"0.5"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(model.items().first().start, 500);
    press(Qt::Key_Tab);
    ASSERT_NE(editor(), nullptr);
    type(u"壹"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(texts().first(), u"壹"_s);
    EXPECT_EQ(place(), std::pair(std::optional(1), int(CueTableModel::startColumn)));
    EXPECT_TRUE(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
    press(Qt::Key_Backtab);
    EXPECT_EQ(place(), std::pair(std::optional(0), int(CueTableModel::textColumn)));
    ASSERT_NE(editor(), nullptr);
    compose(u"er"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(place().first, 0) << "the input method's";
    compose({});
    edit(1);
    press(Qt::Key_Tab);
    EXPECT_FALSE(table().isEditing());
    EXPECT_TRUE(table().hasFocus());
    press(Qt::Key_Tab);
    EXPECT_FALSE(table().hasFocus());
}

TEST_F(CueEditing, escape_takes_back_what_was_typed_and_redo_brings_it)
{
    load({u"一"_s});
    editWith(0, u"打错了"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(texts(), QStringList{u"一"_s});
    model.redo();
    EXPECT_EQ(texts(), QStringList{u"打错了"_s});
}

TEST_F(CueEditing, what_is_typed_is_kept_when_something_else_is_turned_to)
{
    using Turn = std::function<void()>;
    const std::pair<const char *, Turn> turns[] = {
        {"another row",
         [this] {
             const QModelIndex other = table().model()->index(2, CueTableModel::textColumn);
             QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(other).center());
         }},
        {"a tab",
         [this] {
             auto *const tabs = find<QTabBar>(u"语言组"_s);
             QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
         }},
        {"a tool", [this] { click(u"查找替换"_s); }},
        {"a tool of the menu", [this] { model.window().setScriptMatchPresented(true); }},
        {"another job", [this] { load({u"新"_s}); }},
        {"another window",
         [this] {
             QWidget other;
             other.show();
             other.activateWindow();
             EXPECT_TRUE(Events::waitFor([&] { return other.isActiveWindow(); }));
             window.activateWindow();
         }},
        {"a hidden window", [this] { window.hide(); }},
    };
    for (const auto &[name, turn] : turns) {
        SCOPED_TRACE(name);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        model.window().setFindReplaceVisible(false);
        model.window().setScriptMatchPresented(false);
        loadTracks({u"一"_s, u"二"_s, u"三"_s}, {u"one"_s});
        editWith(0, u"刚刚输入"_s);
        turn();
        Events::handle();
        // Undo reaches the session in which it was typed, whatever has come since.
        bool isKept = false;
        do {
            for (const SubtitleTrack &track : model.tracks())
                isKept = isKept || track.items.first().text == u"刚刚输入"_s;
            if (!isKept && model.canUndo())
                model.undo();
            else
                break;
        } while (true);
        EXPECT_TRUE(isKept);
    }
}

TEST_F(CueEditing, what_is_typed_into_a_cue_that_goes_is_shown)
{
    load({u"一"_s, u"二"_s});
    editWith(1, u"来不及保存"_s);
    model.deleteCues({1});
    ASSERT_TRUE(Events::waitFor([&] { return model.failure().has_value(); }));
    EXPECT_TRUE(status().contains(u"来不及保存"_s));
    EXPECT_EQ(texts(), QStringList{u"一"_s});
}

TEST_F(CueEditing, what_is_typed_never_lands_in_another_cue)
{
    // A session that comes in while a text or a time is being typed stays as it came.
    load({u"一"_s, u"二"_s, u"三"_s});
    editWith(1, u"旧的"_s);
    load({u"甲"_s, u"乙"_s, u"丙"_s});
    Events::handle();
    EXPECT_EQ(texts(), (QStringList{u"甲"_s, u"乙"_s, u"丙"_s}));
    EXPECT_TRUE(table().hasFocus());
    model.undo();
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"旧的"_s, u"三"_s}));
    Events::handle();

    QLineEdit *const time = timeField(1, CueTableModel::startColumn);
    ASSERT_NE(time, nullptr);
    time->setText(u"2.1"_s);
    load({u"子"_s, u"丑"_s, u"寅"_s});
    Events::handle();
    EXPECT_EQ(model.items()[1].start, 2'000);

    // A version from outside takes one cue away and changes another: the rows between mean other cues.
    load({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s});
    editWith(2, u"c 还在输入"_s);
    model.asOneStep([&] {
        model.deleteCues({0});
        model.setText(3, u"E"_s);
    });
    Events::handle();
    if (editor())
        press(Qt::Key_Return);
    EXPECT_EQ(texts().first(), u"b"_s);
    EXPECT_EQ(texts().mid(2), (QStringList{u"d"_s, u"E"_s}));
}

TEST_F(CueEditing, escape_undoes_nothing_but_what_was_typed)
{
    load({u"一"_s, u"二"_s});
    model.setText(0, u"改过"_s);
    editWith(1, u"二 "_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(texts(), (QStringList{u"改过"_s, u"二"_s}));
    model.undo();
    editWith(1, u"不要了"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"二"_s}));
    model.redo();
    EXPECT_EQ(texts().first(), u"改过"_s) << "what was undone before can still be redone";
}

TEST_F(CueEditing, a_change_of_other_cues_leaves_the_editor_open)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    editWith(2, u"还在输入"_s);
    model.deleteCues({0});
    Events::handle();
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->toPlainText(), u"还在输入"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(texts(), (QStringList{u"二"_s, u"还在输入"_s}));
}

TEST_F(CueEditing, a_blank_text_is_refused_and_stays_to_be_mended)
{
    load({u"一"_s});
    editWith(0, u" "_s);
    press(Qt::Key_Return);
    EXPECT_NE(editor(), nullptr);
    EXPECT_TRUE(model.failure().has_value());
    table().commitEdit();
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(texts(), QStringList{u"一"_s});
}

TEST_F(CueEditing, undo_is_the_texts_own_in_the_editor_and_the_jobs_outside)
{
    load({u"一"_s, u"二"_s});
    model.setText(1, u"贰"_s);
    edit(0);
    editor()->moveCursor(QTextCursor::End);
    type(u"二三"_s);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor()->toPlainText(), u"一"_s);
    EXPECT_EQ(model.items().at(1).text, u"贰"_s);
    type(u"改"_s);
    press(Qt::Key_Return);
    press(Qt::Key_Escape); // which leaves the next text as it is
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"贰"_s}));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(texts(), (QStringList{u"一改"_s, u"贰"_s}));
}

TEST_F(CueEditing, splits_what_is_typed_at_the_cursor_in_one_step_and_goes_on_in_the_second_half)
{
    load({u"旧"_s, u"尾"_s});
    editWith(0, u" 大家好今天聊调色"_s);
    QTextCursor cursor = editor()->textCursor();
    cursor.setPosition(4);
    editor()->setTextCursor(cursor);
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"今天聊调色"_s, u"尾"_s}));
    EXPECT_EQ(model.items().first().end, 750); // three of eight characters
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->toPlainText(), u"今天聊调色"_s);
    EXPECT_EQ(editor()->textCursor().position(), 0);
    EXPECT_EQ(model.items().at(1).id, 3); // the highest number and one
    model.undo();
    EXPECT_EQ(texts(), (QStringList{u"旧"_s, u"尾"_s}));
}

TEST_F(CueEditing, a_split_without_text_on_one_side_is_refused)
{
    load({u"一二"_s});
    edit(0);
    editor()->moveCursor(QTextCursor::End);
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(texts(), QStringList{u"一二"_s});
    EXPECT_TRUE(model.failure().has_value());
    EXPECT_NE(editor(), nullptr);
}

TEST_F(CueEditing, joins_with_the_next_inside_and_outside_the_editor)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    edit(0);
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"一二"_s, u"三"_s}));
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(texts(), QStringList{u"一二三"_s});
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(texts(), QStringList{u"一二三"_s});
}

TEST_F(CueEditing, a_window_that_opens_with_a_job_begins_at_its_first_cue)
{
    load({u"一"_s, u"二"_s});
    QWidget other;
    auto *const content = new LintoraPanel(model);
    auto *const layout = new QVBoxLayout(&other);
    layout->addWidget(content);
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(QApplication::focusWidget(), &content->table());
    EXPECT_EQ(content->table().currentCue(), 0);
}

} // namespace
