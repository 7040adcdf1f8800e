// Commands on the cues of the table: the clipboard, times, tracks, the filter.

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

TEST_F(CueEditing, cut_cues_are_pasted_with_their_times_and_as_text_elsewhere)
{
    loadTracks({u"一"_s, u"二"_s, u"三"_s}, {u"one"_s, u"two"_s});
    table().goTo(1);
    press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"三"_s}));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"二"_s);
    model.selectTrack(model.tracks().at(1).id);
    Events::handle();
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"one"_s, u"two"_s, u"二"_s}));
    EXPECT_EQ(model.items().at(2).start, 2'000);
    EXPECT_EQ(model.items().at(2).end, 4'000);
    EXPECT_EQ(table().currentCue(), 2);
    model.undo();
    EXPECT_EQ(texts(), (QStringList{u"one"_s, u"two"_s}));
    QGuiApplication::clipboard()->setText(u"别处"_s);
    table().goTo(0);
    press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->toPlainText(), u"别处"_s);
}

TEST_F(CueEditing, a_long_text_opens_as_high_as_it_is)
{
    load({u"短"_s, QString(120, u'长')});
    edit(1);
    EXPECT_GE(editor()->height(), 3 * editor()->fontMetrics().lineSpacing());
    EXPECT_FALSE(editor()->verticalScrollBar()->isVisible());
}

TEST_F(CueEditing, undoing_goes_to_what_it_changed)
{
    load({u"一"_s, u"二"_s, u"三"_s, u"四"_s});
    model.setText(2, u"改"_s);
    table().goTo(0);
    model.undo();
    EXPECT_EQ(table().currentCue(), 2);
    find<QLineEdit>(u"筛选字幕"_s)->setText(u"一"_s);
    Events::handle();
    model.redo();
    EXPECT_EQ(table().currentCue(), 2);
    model.deleteCues({3});
    table().goTo(0);
    model.undo();
    EXPECT_EQ(table().currentCue(), 3);
}

TEST_F(CueEditing, the_filter_is_left_by_the_keys_that_lead_on)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    auto *const filter = find<QLineEdit>(u"筛选字幕"_s);
    table().goTo(1);
    filter->setFocus();
    filter->setText(u"没有"_s);
    Events::handle();
    press(Qt::Key_Escape);
    EXPECT_EQ(table().currentCue(), 1) << "back to where we were";
    for (const int key : {Qt::Key_Down, Qt::Key_Return, Qt::Key_Escape}) {
        filter->setFocus();
        filter->setText(u"三"_s);
        Events::handle();
        compose(u"er"_s);
        press(key);
        EXPECT_TRUE(filter->hasFocus()) << key;
        compose({});
        press(key);
        Events::handle();
        EXPECT_TRUE(table().hasFocus()) << key;
        EXPECT_TRUE(table().currentCue().has_value()) << key;
        EXPECT_EQ(table().shownCues(), key == Qt::Key_Escape ? 3 : 1) << key;
    }
    filter->setText(u"没有"_s);
    Events::handle();
    const QImage nothing = table().viewport()->grab().toImage();
    QImage blank = nothing;
    blank.fill(nothing.pixelColor(0, 0));
    EXPECT_NE(nothing, blank); // it says so
}

TEST_F(CueEditing, inserts_behind_the_current_cue_and_opens_the_editor)
{
    load({u"一"_s, u"二"_s});
    editWith(0, u"壹"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(model.items().size(), 3);
    EXPECT_EQ(model.items().first().text, u"壹"_s);
    EXPECT_EQ(model.items().at(1).id, 3);
    ASSERT_NE(editor(), nullptr);
    type(u"新写的"_s); // in the place of the selected placeholder
    press(Qt::Key_Return);
    EXPECT_EQ(texts(), (QStringList{u"壹"_s, u"新写的"_s, u"二"_s}));
}

TEST_F(CueEditing, deletes_the_selected_cues_in_one_step)
{
    load({u"一"_s, u"二"_s, u"三"_s, u"四"_s});
    table().goTo(1);
    table().setFocus();
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"四"_s}));
    EXPECT_EQ(table().currentCue(), 1);
    model.undo();
    EXPECT_EQ(model.items().size(), 4);
}

TEST_F(CueEditing, the_cue_that_a_command_leads_to_is_the_only_one_selected_while_its_key_is_held)
{
    // Through the window system, which knows the keys that are held.
    const auto hold = [this](Qt::Key key) {
        QTest::keyPress(window.windowHandle(), key, Qt::ControlModifier);
        Events::handle();
    };
    for (const Qt::Key key : {Qt::Key_K, Qt::Key_Return}) {
        load({u"大家好今天聊调色"_s, u"尾"_s});
        edit(0);
        QTextCursor cursor = editor()->textCursor();
        cursor.setPosition(3);
        editor()->setTextCursor(cursor);
        hold(key);
        ASSERT_EQ(model.items().size(), 3);
        EXPECT_EQ(table().selectedCues(), QList<qsizetype>{1});
        QTest::keyRelease(window.windowHandle(), key);
        table().commitEdit();
    }
}

TEST_F(CueEditing, what_is_being_typed_is_kept_before_cues_are_deleted)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    editWith(0, u"改"_s);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(model.items().size(), 3) << "in the editor the key deletes text";
    type(u"改"_s);
    table().deleteCues();
    EXPECT_EQ(texts(), (QStringList{u"二"_s, u"三"_s}));
    model.undo();
    EXPECT_EQ(texts(), (QStringList{u"改"_s, u"二"_s, u"三"_s}));
}

TEST_F(CueEditing, no_key_is_a_command_while_an_input_method_composes)
{
    load({u"一"_s, u"二"_s});
    edit(0);
    editor()->moveCursor(QTextCursor::End);
    compose(u"ni'hao"_s);
    for (const int key : {Qt::Key_K, Qt::Key_J, Qt::Key_Return})
        press(key, Qt::ControlModifier);
    press(Qt::Key_Return);
    press(Qt::Key_Escape);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(model.items().size(), 2);
    type(u"你好"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(texts(), (QStringList{u"一你好"_s, u"二"_s}));
}

TEST_F(CueEditing, letters_on_a_row_do_nothing)
{
    load({u"abc"_s, u"kbc"_s});
    table().setFocus();
    for (const int key : {Qt::Key_K, Qt::Key_J, Qt::Key_A, Qt::Key_D})
        press(key);
    EXPECT_EQ(texts(), (QStringList{u"abc"_s, u"kbc"_s}));
    EXPECT_EQ(table().currentCue(), 0);
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(CueEditing, several_cues_move_to_another_track_in_one_step)
{
    loadTracks({u"一"_s, u"二"_s, u"三"_s}, {u"one"_s});
    table().setFocus();
    press(Qt::Key_Down, Qt::ShiftModifier);
    QContextMenuEvent request(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(table().viewport(), &request);
    auto *const menu = table().findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    for (const QAction *const entry : menu->actions()) {
        if (entry->text() == u"移到其他语言组"_s)
            entry->menu()->actions().first()->trigger();
    }
    menu->close();
    EXPECT_EQ(texts(), QStringList{u"三"_s});
    EXPECT_EQ(model.tracks().last().items.size(), 3);
    model.undo();
    EXPECT_EQ(texts().size(), 3);
}

TEST_F(CueEditing, copies_and_cuts_rows_as_text_and_pastes_text_over_one)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    table().setFocus();
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"一\n二"_s);
    QGuiApplication::clipboard()->setText(u"一\n二"_s); // as another program has it
    table().goTo(2);
    press(Qt::Key_V, Qt::ControlModifier);
    press(Qt::Key_Return);
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"二"_s, u"一\n二"_s}));
    table().goTo(0);
    press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(texts(), (QStringList{u"二"_s, u"一\n二"_s}));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"一"_s);
}

TEST_F(CueEditing, a_time_is_typed_in_short)
{
    load({u"一"_s, u"二"_s});
    QLineEdit *const field = timeField(1, CueTableModel::endColumn);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(), u"00:00:04,000"_s);
    field->selectAll();
    type(u"5.25"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(model.items().at(1).end, 5'250);
    EXPECT_TRUE(table().hasFocus());
}

TEST_F(CueEditing, a_time_is_nudged_by_frames_of_the_rate)
{
    load({u"一"_s, u"二"_s});
    Options options = model.options();
    options.rate = FrameRate::all()[3]; // 29.97
    model.setOptions(options);
    QLineEdit *const field = timeField(1, CueTableModel::startColumn);
    ASSERT_NE(field, nullptr);
    press(Qt::Key_Up);
    EXPECT_EQ(field->text(), u"00:00:02,035"_s); // frame 60 is at 2,002 ms
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(model.items().at(1).start, 1'969);
    QLineEdit *const first = timeField(0, CueTableModel::startColumn);
    press(Qt::Key_Down);
    EXPECT_EQ(first->text(), u"00:00:00,000"_s) << "nothing is before the beginning";
    first->setText(u"1.99"_s);
    press(Qt::Key_Up);
    EXPECT_TRUE(first->property("invalid").toBool()) << "it would begin where it ends";
    press(Qt::Key_Escape);
    EXPECT_EQ(model.items().first().start, 0);
}

TEST_F(CueEditing, times_of_the_selected_or_of_all_cues_move_in_one_step)
{
    const auto shift = [this](const QString &typed, const QString &scope) {
        press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        auto *const scopes = find<QComboBox>(u"范围"_s);
        ASSERT_NE(scopes, nullptr);
        if (!scope.isEmpty())
            scopes->setCurrentText(scope);
        type(typed);
        press(Qt::Key_Return);
    };
    loadTracks({u"一"_s, u"二"_s, u"三"_s}, {u"one"_s});
    const LintoraSession before = model.snapshot();
    table().setFocus();
    press(Qt::Key_Down);
    press(Qt::Key_Down, Qt::ShiftModifier);
    shift(u"-0.5"_s, {}); // several are selected: they are meant
    EXPECT_EQ(model.items().first().start, 0);
    EXPECT_EQ(model.items().at(1).start, 1'500);
    EXPECT_EQ(model.items().at(2).end, 5'500);
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(table().selectedCues(), (QList<qsizetype>{1, 2}));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model.snapshot(), before);
    shift(u"15帧"_s, u"所有语言组"_s); // at 30 frames a second
    for (const SubtitleTrack &track : model.tracks())
        EXPECT_EQ(track.items.first().start, 500) << qPrintable(track.label);
    shift(u"-1"_s, u"全部 3 条"_s);
    EXPECT_EQ(model.items().first().start, 500) << "refused as a whole";
    EXPECT_NE(find<QComboBox>(u"范围"_s), nullptr) << "to be mended";
    press(Qt::Key_Escape);
    model.undo();
    EXPECT_EQ(model.snapshot(), before);
}

TEST_F(CueEditing, what_is_no_time_is_said_where_it_is)
{
    load({u"一"_s, u"二"_s});
    for (const QString &wrong : {u"很久"_s, u"1.5"_s}) { // the second ends before it starts
        SCOPED_TRACE(qPrintable(wrong));
        QLineEdit *const field = timeField(1, CueTableModel::endColumn);
        ASSERT_NE(field, nullptr);
        field->selectAll();
        type(wrong);
        press(Qt::Key_Return);
        EXPECT_TRUE(field->hasFocus());
        EXPECT_TRUE(field->property("invalid").toBool());
        EXPECT_FALSE(field->toolTip().isEmpty());
        find<QLineEdit>(u"筛选字幕"_s)->setFocus(); // it stays to be mended
        EXPECT_TRUE(field->isVisible());
        field->setFocus();
        press(Qt::Key_Escape);
        EXPECT_EQ(model.items().at(1).end, 4'000);
    }
}

TEST_F(CueEditing, the_filter_keeps_what_is_edited_until_it_changes)
{
    load({u"苹果"_s, u"香蕉"_s, u"苹果派"_s});
    auto *const filter = find<QLineEdit>(u"筛选字幕"_s);
    ASSERT_NE(filter, nullptr);
    filter->setFocus();
    type(u"苹果"_s);
    EXPECT_EQ(table().shownCues(), 2);
    editWith(1, u"菠萝派"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(model.items().at(2).text, u"菠萝派"_s);
    EXPECT_EQ(table().shownCues(), 2);
    press(Qt::Key_Return, Qt::ControlModifier); // behind it
    EXPECT_EQ(table().shownCues(), 3);
    EXPECT_EQ(table().currentCue(), 3);
    press(Qt::Key_Escape);
    filter->setFocus();
    type(u"派"_s);
    EXPECT_EQ(table().shownCues(), 0);
    filter->clear();
    EXPECT_EQ(table().shownCues(), 4);
}

TEST_F(CueEditing, while_a_job_owns_the_cues_what_is_being_typed_waits_and_nothing_opens)
{
    load({u"一"_s, u"二"_s});
    editWith(0, u"打了一半"_s);
    {
        OwnedCues owned(model);
        table().setFocus();
        ASSERT_NE(editor(), nullptr);
        EXPECT_EQ(editor()->toPlainText(), u"打了一半"_s);
        owned.end();
    }
    EXPECT_TRUE(table().commitEdit());
    EXPECT_EQ(model.items().first().text, u"打了一半"_s);
    OwnedCues owned(model);
    edit(0);
    press(Qt::Key_Return);
    EXPECT_EQ(editor(), nullptr);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(model.items().size(), 2);
    owned.end();
}

} // namespace
