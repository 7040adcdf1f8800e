#include "app/window/EditMenu.h"

#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/drag/DragSubtitleCard.h"
#include "app/model/FCPPasteboard.h"
#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

class EditMenuTest : public testing::Test
{
protected:
    EditMenuTest()
    {
        QGuiApplication::clipboard()->setText(u"贴"_s);
        new QVBoxLayout(&m_window);
        m_bar.addMenu(&m_menu);
        m_window.layout()->setMenuBar(&m_bar);
        add<QWidget>()->setFocusPolicy(Qt::StrongFocus);
        m_window.show();
        m_window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }

    template <class Widget>
    Widget *add()
    {
        auto *const widget = new Widget;
        m_window.layout()->addWidget(widget);
        return widget;
    }

    void focus(QWidget *widget)
    {
        widget->setFocus();
        Events::handle();
    }

    /// The entries that can be chosen.
    QString enabled() const
    {
        QStringList titles;
        for (const QAction *const action : m_menu.actions()) {
            if (action->isEnabled() && !action->isSeparator())
                titles += action->text();
        }
        return titles.join(u' ');
    }

    void choose(const QString &title)
    {
        for (QAction *const action : m_menu.actions()) {
            if (action->text() == title)
                action->trigger();
        }
        Events::handle();
    }

    void load(int cues)
    {
        m_model.load(m_outside.srt(u"a.srt"_s, cues));
        ASSERT_TRUE(Events::waitFor([&] { return m_model.items().size() == cues; }));
    }

    TemporaryModel m_outside;
    LintoraModel m_model{m_outside.surroundings()};
    QWidget m_window;
    QMenuBar m_bar;
    EditMenu m_menu{m_model};
};

TEST_F(EditMenuTest, acts_on_the_history_while_no_text_is_edited)
{
    focus(m_window.findChild<QWidget *>());
    EXPECT_EQ(enabled(), QString());
    load(2);
    EXPECT_EQ(enabled(), u"撤销载入字幕"_s);
    choose(u"撤销载入字幕"_s);
    EXPECT_TRUE(m_model.items().isEmpty());
    EXPECT_EQ(enabled(), u"重做载入字幕"_s);
    choose(u"重做载入字幕"_s);
    EXPECT_EQ(m_model.items().size(), 2);
}

TEST_F(EditMenuTest, acts_on_the_text_of_a_line_that_is_edited)
{
    load(1);
    auto *const line = add<QLineEdit>();
    focus(line);
    EXPECT_EQ(enabled(), u"粘贴"_s) << "the history is not to be reached from an untouched field";
    line->insert(u"字"_s);
    EXPECT_EQ(enabled(), u"撤销键入 粘贴 全选"_s);
    choose(u"全选"_s);
    EXPECT_EQ(enabled(), u"撤销键入 剪切 复制 粘贴 全选"_s);
    choose(u"剪切"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"字"_s);
    choose(u"撤销键入"_s);
    EXPECT_EQ(line->text(), u"字"_s);
    choose(u"重做键入"_s);
    EXPECT_EQ(line->text(), QString());
    choose(u"粘贴"_s);
    EXPECT_EQ(line->text(), u"字"_s);
    EXPECT_EQ(m_model.items().size(), 1) << "the job is left alone";
}

TEST_F(EditMenuTest, acts_on_the_text_of_many_lines)
{
    auto *const text = add<QPlainTextEdit>();
    focus(text);
    text->insertPlainText(u"一\n二"_s);
    text->selectAll();
    EXPECT_EQ(enabled(), u"撤销键入 剪切 复制 粘贴 全选"_s);
    choose(u"撤销键入"_s);
    EXPECT_EQ(text->toPlainText(), QString());
}

TEST_F(EditMenuTest, finds_the_text_within_a_control)
{
    auto *const box = add<QComboBox>();
    box->setEditable(true);
    focus(box);
    box->lineEdit()->insert(u"字"_s);
    EXPECT_EQ(enabled(), u"撤销键入 粘贴 全选"_s);
    choose(u"撤销键入"_s);
    EXPECT_EQ(box->currentText(), QString());
}

TEST_F(EditMenuTest, takes_nothing_out_of_a_field_that_hides_its_text)
{
    auto *const line = add<QLineEdit>();
    line->setEchoMode(QLineEdit::Password);
    focus(line);
    line->insert(u"secret"_s);
    line->selectAll();
    EXPECT_EQ(enabled(), u"撤销键入 粘贴 全选"_s);
}

TEST_F(EditMenuTest, leaves_the_history_within_reach_of_a_text_that_cannot_be_edited)
{
    load(1);
    auto *const text = add<QPlainTextEdit>();
    text->setPlainText(u"文稿"_s);
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    focus(text);
    text->selectAll();
    EXPECT_EQ(enabled(), u"撤销载入字幕 复制 全选"_s);
    choose(u"撤销载入字幕"_s);
    EXPECT_TRUE(m_model.items().isEmpty());
}

TEST_F(EditMenuTest, pastes_text_and_nothing_else)
{
    auto *const field = add<QLineEdit>();
    focus(field);
    auto *const picture = new QMimeData;
    picture->setData(u"image/png"_s, "x");
    QGuiApplication::clipboard()->setMimeData(picture);
    choose(u"粘贴"_s);
    EXPECT_EQ(field->text(), QString());
    QGuiApplication::clipboard()->setText(u"贴"_s);
    choose(u"粘贴"_s);
    EXPECT_EQ(field->text(), u"贴"_s);
}

TEST_F(EditMenuTest, offers_what_the_focused_control_can_do)
{
    auto *const table = add<QTableWidget>();
    table->setRowCount(3);
    table->setColumnCount(1);
    focus(table);
    EXPECT_EQ(enabled(), u"全选"_s);
    choose(u"全选"_s);
    EXPECT_EQ(table->selectionModel()->selectedIndexes().size(), 3);
}

TEST_F(EditMenuTest, has_the_commands_on_cues_for_the_table_and_what_is_edited_in_it)
{
    const QString commands = u"插入字幕 拆分 与下一条合并 移动时间… 查找下一处 查找上一处 下一处提醒 下一处可疑"_s;
    load(2);
    auto *const table = new CueTable(m_model);
    m_window.layout()->addWidget(table);
    table->goTo(0);
    focus(table);
    EXPECT_TRUE(enabled().endsWith(
        u"插入字幕 拆分 与下一条合并 删除字幕 移动时间… 查找下一处 查找上一处 下一处提醒 下一处可疑"_s))
        << qPrintable(enabled());
    table->editText(0);
    EXPECT_TRUE(enabled().endsWith(commands)) << "the key of deleting deletes text: " << qPrintable(enabled());
    auto *const editor = table->findChild<CueTextEditor *>();
    ASSERT_NE(editor, nullptr);
    QTextCursor cursor = editor->textCursor();
    cursor.setPosition(1);
    editor->setTextCursor(cursor);
    choose(u"拆分"_s);
    EXPECT_EQ(m_model.items().first().text, u"字"_s) << "at the cursor";
    table->commitEdit();
    focus(table);
    choose(u"删除字幕"_s);
    EXPECT_EQ(m_model.items().size(), 2);
    focus(add<QLineEdit>());
    EXPECT_EQ(enabled(), u"粘贴"_s);
}

TEST_F(EditMenuTest, copies_a_card_that_has_the_focus)
{
    load(1);
    auto *const card = new DragSubtitleCard(m_model, std::nullopt);
    m_window.layout()->addWidget(card);
    focus(card);
    EXPECT_EQ(enabled(), u"撤销载入字幕 复制"_s);
    choose(u"复制"_s);
    EXPECT_TRUE(FCPPasteboard::offeredType(*QGuiApplication::clipboard()->mimeData()).has_value());
}

TEST_F(EditMenuTest, forgets_a_field_that_is_gone)
{
    auto *const line = add<QLineEdit>();
    focus(line);
    line->setText(u"字"_s);
    delete line;
    Events::handle();
    EXPECT_EQ(enabled(), QString());
    choose(u"全选"_s);
}

} // namespace

namespace {

/// A sheet with something of its own to be undone.
class OwnHistory : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString undoTitle MEMBER title)
    Q_PROPERTY(bool editsSession MEMBER edits)

public:
    QString title;
    bool edits = false;

public Q_SLOTS:
    void undo()
    {
        title.clear();
        Q_EMIT undoChanged();
    }

Q_SIGNALS:
    void undoChanged();
};

} // namespace

TEST_F(EditMenuTest, what_is_the_sheets_own_comes_before_what_lies_behind_it)
{
    load(2);
    auto *const sheet = add<OwnHistory>();
    auto *const button = new QWidget(sheet);
    button->setFocusPolicy(Qt::StrongFocus);
    sheet->title = u"删除预设"_s;
    focus(button);
    EXPECT_EQ(enabled(), u"撤销删除预设"_s);
    choose(u"撤销删除预设"_s);
    EXPECT_EQ(enabled(), QString()) << "the job behind it is out of reach";
    choose(u"撤销"_s);
    EXPECT_EQ(m_model.items().size(), 2);
    sheet->edits = true;
    Q_EMIT sheet->undoChanged();
    EXPECT_EQ(enabled(), u"撤销载入字幕"_s) << "unless it is what the sheet edits";
}

#include "EditMenuTest.moc"
