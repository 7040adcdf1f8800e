// The sheets of the text tools.

#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "app/Lintora/tools/CleanupWorkspace.h"
#include "app/Lintora/tools/FindReplaceWorkspace.h"
#include "core/text/SubtitleCleanup.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class Workspaces : public PanelTest
{
protected:
    QStringList visibleTexts(const QWidget *sheet) const
    {
        QStringList texts;
        for (const QLabel *const label : sheet->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts += label->text();
        }
        return texts;
    }

    /// What the open sheet says at its foot.
    QString note() const
    {
        for (const Sheet *const sheet : panel->findChildren<Sheet *>()) {
            for (const QLabel *const label : sheet->findChildren<QLabel *>()) {
                if (sheet->isVisible() && label->accessibleName() == u"状态"_s)
                    return label->text();
            }
        }
        return {};
    }

    QLineEdit *field(const QString &name) { return find<QLineEdit>(name); }

    void search(const QString &query, const QString &replacement)
    {
        model.window().setFindReplaceVisible(true);
        field(u"关键词"_s)->setText(query);
        field(u"替换为（留空则删除关键词）"_s)->setText(replacement);
        Events::handle();
    }

    static ComparedRow row(const QListView &list, int row)
    {
        return list.model()->index(row, 0).data(MarkedTextDelegate::comparedRole).value<ComparedRow>();
    }

    void match(const QString &script)
    {
        model.window().setScriptMatchPresented(true);
        find<QPlainTextEdit>(u"文稿正文"_s)->setPlainText(script);
        click(u"开始匹配"_s);
        ASSERT_TRUE(Events::waitFor([&] { return !model.activity(); }));
        Events::handle();
    }
};

TEST_F(Workspaces, escape_closes_a_sheet_and_the_keyboard_goes_back)
{
    load({u"一"_s, u"二"_s});
    table().goTo(1);
    table().setFocus();
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(model.window().findReplaceVisible());
    EXPECT_TRUE(field(u"关键词"_s)->hasFocus());
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().findReplaceVisible());
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(table().currentCue(), 1);
}

TEST_F(Workspaces, a_file_dropped_on_a_field_is_not_typed_into_it)
{
    load({u"一"_s});
    model.window().setFindReplaceVisible(true);
    model.window().setScriptMatchPresented(true);
    QMimeData file;
    file.setUrls({QUrl(u"file:///新.srt"_s)});
    file.setText(u"file:///新.srt"_s); // as file managers offer it too
    QMimeData text;
    text.setText(u"字"_s);
    const auto *const script = find<QPlainTextEdit>(u"文稿正文"_s);
    QWidget *const fields[] = {field(u"关键词"_s), script->viewport()};
    for (QWidget *const each : fields) {
        for (const QMimeData *const data : {&file, &text}) {
            QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(each, &enter);
            QDropEvent drop(QPointF(1, 1), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(each, &drop); // Whoever took what was dragged in gets it.
        }
    }
    EXPECT_EQ(field(u"关键词"_s)->text(), u"字"_s);
    EXPECT_EQ(script->toPlainText(), u"字"_s);
}

TEST_F(Workspaces, the_keyboard_goes_back_to_what_is_still_there)
{
    load({u"一"_s, u"二"_s});
    // The editor that had it is gone when the sheet closes.
    edit(1);
    model.window().setFindReplaceVisible(true);
    press(Qt::Key_Escape);
    EXPECT_TRUE(table().hasFocus());
    // One sheet over the other, closed one by one.
    model.showFCPImport();
    model.window().setFindReplaceVisible(true);
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().fcpImportVisible());
    EXPECT_TRUE(table().hasFocus());
    // Cues that come in under a sheet get it when that closes.
    model.deleteCues({0, 1});
    model.window().setScriptMatchPresented(true);
    load({u"三"_s});
    Events::handle();
    EXPECT_FALSE(table().hasFocus());
    press(Qt::Key_Escape);
    EXPECT_TRUE(table().hasFocus());
}

TEST_F(Workspaces, the_keyboard_stays_within_an_open_sheet)
{
    load({u"一"_s});
    search(u"一"_s, u"壹"_s);
    const auto *const sheet = panel->findChild<FindReplaceWorkspace *>();
    QStringList names;
    for (int i = 0; i < 12; ++i) {
        press(Qt::Key_Tab);
        ASSERT_TRUE(sheet->isAncestorOf(QApplication::focusWidget()));
        names += QApplication::focusWidget()->accessibleName();
    }
    for (const QString &name :
         {u"关键词"_s, u"替换为（留空则删除关键词）"_s, u"匹配的字幕"_s, u"替换全部 · 1"_s, u"关闭"_s})
        EXPECT_TRUE(names.contains(name)) << qPrintable(name);
}

// Cleanup

TEST_F(Workspaces, filler_words_are_edited_and_kept)
{
    load({u"一"_s});
    click(u"语气词设置"_s);
    const auto *const sheet = panel->findChild<CleanupWorkspace *>();
    ASSERT_TRUE(sheet->isVisible());
    auto *const words = find<QPlainTextEdit>(u"语气词"_s);
    EXPECT_EQ(words->toPlainText(), SubtitleCleanup::defaultFillerWords().join(u'\n'));
    words->setPlainText(u"就是说，然后"_s);
    click(u"保存"_s);
    EXPECT_EQ(note(), u"已保存，下次打开会继续保留"_s);
    EXPECT_EQ(model.textTools().fillerWords(), (QStringList{u"就是说"_s, u"然后"_s}));
}

TEST_F(Workspaces, the_default_words_come_back_only_when_saved_and_a_refused_list_says_why)
{
    load({u"一"_s});
    model.textTools().saveFillerWords({});
    model.window().setCleanupSettingsVisible(true);
    auto *const words = find<QPlainTextEdit>(u"语气词"_s);
    click(u"恢复默认词表"_s);
    EXPECT_EQ(note(), u"点击保存后生效"_s);
    EXPECT_EQ(words->toPlainText(), SubtitleCleanup::defaultFillerWords().join(u'\n'));
    press(Qt::Key_Escape);
    EXPECT_EQ(model.textTools().fillerWords(), QStringList());
    model.window().setCleanupSettingsVisible(true);
    click(u"保存"_s); // what was put in is still there
    EXPECT_EQ(model.textTools().fillerWords(), SubtitleCleanup::defaultFillerWords());
    words->setPlainText(QString(61, u'嗯'));
    click(u"保存"_s);
    EXPECT_EQ(note(), u"最多 100 个词，每个词不超过 60 字。"_s);
    EXPECT_EQ(model.textTools().fillerWords(), SubtitleCleanup::defaultFillerWords());
}

// Find and replace

TEST_F(Workspaces, find_and_replace_previews_as_one_types)
{
    load({u"调色教程"_s, u"没有"_s, u"色彩和色调"_s, u"色"_s});
    search({}, {});
    const auto *const sheet = panel->findChild<FindReplaceWorkspace *>();
    EXPECT_TRUE(visibleTexts(sheet).contains(u"输入关键词，预览所有匹配字幕。"_s));
    EXPECT_FALSE(button(u"替换全部 · 0"_s)->isEnabled());
    search(u"找不到"_s, {});
    EXPECT_TRUE(visibleTexts(sheet).contains(u"没有找到匹配内容"_s));

    search(u"色"_s, u"颜色"_s);
    auto *const list = find<QListView>(u"匹配的字幕"_s);
    ASSERT_NE(list, nullptr);
    const QAbstractItemModelTester tester(list->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_EQ(list->model()->rowCount(), 3);
    EXPECT_NE(button(u"替换全部 · 4"_s), nullptr);
    const ComparedRow third = row(*list, 1);
    EXPECT_EQ(third.number, u"3"_s);
    EXPECT_EQ(third.after, u"颜色彩和颜色调"_s);
    using Marks = QList<TextDifference::Stretch>;
    EXPECT_EQ(third.beforeMarks, (Marks{{0, 1}, {3, 1}}));
    EXPECT_EQ(third.afterMarks, (Marks{{0, 2}, {4, 2}}));

    search(u"色"_s, {});
    EXPECT_EQ(row(*list, 2).after, u"（替换后为空，将移除此条字幕）"_s);
}

TEST_F(Workspaces, replacing_can_be_taken_back)
{
    load({u"调色"_s, u"色"_s});
    search(u"色"_s, {});
    EXPECT_EQ(button(u"撤销本次替换"_s), nullptr);
    click(u"替换全部 · 2"_s);
    EXPECT_EQ(texts(), QStringList{u"调"_s});
    EXPECT_EQ(note(), model.message());
    click(u"撤销本次替换"_s);
    EXPECT_EQ(texts(), (QStringList{u"调色"_s, u"色"_s}));
    EXPECT_EQ(note(), u"已撤销，字幕恢复为替换前内容"_s);
    EXPECT_EQ(button(u"撤销本次替换"_s), nullptr);
}

TEST_F(Workspaces, a_keyword_over_its_limit_is_refused_when_it_is_used)
{
    load({QString(300, u'长')});
    search(QString(201, u'长'), {});
    EXPECT_EQ(note(), QString());
    EXPECT_EQ(find<QListView>(u"匹配的字幕"_s), nullptr);
    click(u"替换全部 · 0"_s);
    EXPECT_FALSE(note().isEmpty());
    EXPECT_EQ(note(), model.failure());
}

TEST_F(Workspaces, an_activated_match_is_shown_in_the_table)
{
    load({u"一"_s, u"二"_s, u"三"_s});
    search(u"三"_s, {});
    auto *const list = find<QListView>(u"匹配的字幕"_s);
    list->setFocus();
    list->setCurrentIndex(list->model()->index(0, 0));
    press(Qt::Key_Return);
    EXPECT_FALSE(model.window().findReplaceVisible());
    EXPECT_EQ(table().currentCue(), 2);
    EXPECT_TRUE(table().hasFocus());
}

// Script matching

TEST_F(Workspaces, a_transcript_is_matched_looked_through_and_applied)
{
    load({u"今天我们聊聊条色"_s, u"先看这段素才怎么样"_s, u"完全没有的一句"_s});
    match(u"今天我们聊聊调色，先看这段素材怎么样。"_s);
    auto *const list = find<QListView>(u"对照"_s);
    ASSERT_NE(list, nullptr);
    const QAbstractItemModelTester tester(list->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(row(*list, 0).after, u"匹配后先查看对照。差异较大的内容默认不勾选，未匹配的字幕保留原文。"_s);
    const ComparedRow first = row(*list, 1);
    EXPECT_EQ(first.before, u"今天我们聊聊条色"_s);
    EXPECT_EQ(first.after, u"今天我们聊聊调色，"_s);
    using Marks = QList<TextDifference::Stretch>;
    EXPECT_EQ(first.beforeMarks, (Marks{{6, 1}}));
    EXPECT_EQ(first.afterMarks, (Marks{{6, 1}, {8, 1}}));
    EXPECT_EQ(row(*list, 3).before, u"未匹配字幕 · 1"_s);
    EXPECT_EQ(row(*list, 3).after, u"以下字幕保留原文与时间。"_s);

    // The first is ticked off, by the keyboard.
    list->setFocus();
    list->setCurrentIndex(list->model()->index(1, 0));
    press(Qt::Key_Space);
    click(u"应用勾选 · 1"_s);
    EXPECT_EQ(texts(), (QStringList{u"今天我们聊聊条色"_s, u"先看这段素材怎么样。"_s, u"完全没有的一句"_s}));
    click(u"撤销修改"_s);
    EXPECT_EQ(texts().at(1), u"先看这段素才怎么样"_s);
}

TEST_F(Workspaces, passages_that_nobody_said_are_shown)
{
    load({u"今天我们聊聊调色"_s, u"先看这段素材"_s});
    match(u"今天我们聊聊调色，先看这段素材。\n\n这一整段只写在文稿里没有人说出来过。"_s);
    auto *const list = find<QListView>(u"对照"_s);
    ASSERT_NE(list, nullptr);
    const int last = list->model()->rowCount() - 1;
    EXPECT_EQ(row(*list, last - 1).before, u"未匹配的文稿 · 1"_s);
    EXPECT_EQ(row(*list, last - 1).after, u"这些内容暂不写入字幕，请确认是否在素材中说出。"_s);
    EXPECT_TRUE(row(*list, last).before.contains(u"没有人说出来过"_s));
}

TEST_F(Workspaces, closing_loses_neither_transcript_nor_proposals)
{
    load({u"今天我们聊聊条色"_s});
    match(u"今天我们聊聊调色"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().scriptMatchPresented());
    click(u"文稿匹配"_s);
    EXPECT_EQ(find<QPlainTextEdit>(u"文稿正文"_s)->toPlainText(), u"今天我们聊聊调色"_s);
    EXPECT_NE(button(u"应用勾选 · 1"_s), nullptr);
}

TEST_F(Workspaces, an_empty_transcript_is_asked_for)
{
    load({u"一"_s});
    model.window().setScriptMatchPresented(true);
    click(u"开始匹配"_s);
    EXPECT_EQ(note(), u"请先粘贴文稿正文"_s);
    EXPECT_TRUE(find<QLabel>(u"状态"_s)->property("failure").toBool());
    find<QPlainTextEdit>(u"文稿正文"_s)->setPlainText(u"一"_s);
    click(u"开始匹配"_s);
    EXPECT_FALSE(model.scriptMatching().isRefused());
}

} // namespace
