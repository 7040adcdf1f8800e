// What can be seen, reached and pressed, and what it says.

#include "app/Lintora/StatusLine.h"
#include "app/Lintora/controls/BusyBar.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/Sheet.h"
#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/drag/CardRow.h"
#include "app/Lintora/drag/UnifiedImportArea.h"
#include "app/model/FCPPasteboard.h"
#include "core/Cancelled.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/OwnedCues.h"
#include "tests/support/StoryDocument.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSemaphore>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

class Layout : public PanelTest
{
protected:
    /// The controls that Tab goes through, from the import area on.
    QStringList tabOrder()
    {
        QStringList names;
        panel->findChild<UnifiedImportArea *>()->setFocus();
        const QWidget *const first = QApplication::focusWidget();
        do {
            names += QApplication::focusWidget()->accessibleName();
            press(Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && names.size() < 60);
        return names;
    }
};

TEST_F(Layout, cues_take_the_place_of_the_large_area)
{
    const auto *const area = panel->findChild<UnifiedImportArea *>();
    EXPECT_EQ(area->form(), UnifiedImportArea::Form::large);
    EXPECT_EQ(button(u"一键清理"_s), nullptr);
    load({u"一"_s});
    EXPECT_EQ(area->form(), UnifiedImportArea::Form::oneLine);
    EXPECT_TRUE(table().isVisible());
    EXPECT_TRUE(table().hasFocus());
    model.undo();
    Events::handle();
    EXPECT_FALSE(table().isVisible());
}

TEST_F(Layout, every_control_has_a_name_and_is_reached_by_the_keyboard)
{
    loadTracks({u"一"_s}, {u"one"_s});
    model.reportFailure(u"出错"_s); // its copy button is a control too
    Events::handle();
    const QStringList reached = tabOrder();
    for (const QWidget *const each : panel->findChildren<QWidget *>()) {
        const bool isControl = qobject_cast<const QAbstractButton *>(each) || qobject_cast<const QLineEdit *>(each) ||
                               qobject_cast<const QAbstractItemView *>(each) || qobject_cast<const QTabBar *>(each);
        const bool isPart = each->parent()->inherits("QLineEdit") || each->parent()->inherits("QTabBar") ||
                            each->parent()->inherits("QTableView") || each->inherits("QHeaderView");
        if (!isControl || isPart || !each->isVisible())
            continue;
        EXPECT_FALSE(each->accessibleName().isEmpty()) << each->metaObject()->className();
        EXPECT_TRUE(!each->isEnabled() || reached.contains(each->accessibleName()))
            << qPrintable(each->accessibleName());
    }
}

TEST_F(Layout, tab_follows_the_eye)
{
    loadTracks({u"一"_s}, {u"one"_s});
    const QStringList reached = tabOrder();
    const QStringList expected = {u"文稿匹配"_s, u"去语气词"_s, u"语气词设置"_s, u"去标点并分句"_s, u"一键清理"_s,
                                  u"撤销"_s,     u"查找替换"_s, u"分离中英"_s,   u"语言组"_s,       u"筛选字幕"_s,
                                  u"字幕列表"_s, u"导出 SRT"_s, u"导出 FCPXML"_s};
    qsizetype last = -1;
    for (const QString &name : expected) {
        const qsizetype place = reached.indexOf(name);
        EXPECT_GT(place, last) << qPrintable(name);
        last = place;
    }
}

TEST_F(Layout, nothing_is_clipped_in_the_smallest_window)
{
    loadTracks({u"一"_s, u"二"_s}, {u"one"_s});
    model.reportFailure(QString(200, u'错'));
    window.resize(1, 1);
    Events::handle();
    EXPECT_EQ(panel->size(), QSize(560, 650));
    for (const QWidget *const each : panel->findChildren<QWidget *>()) {
        if (!each->isVisible() || qobject_cast<const ElidedLabel *>(each))
            continue;
        const bool isLabelled = qobject_cast<const QPushButton *>(each) || qobject_cast<const CheckBox *>(each) ||
                                qobject_cast<const QLabel *>(each);
        EXPECT_TRUE(!isLabelled || each->width() >= each->sizeHint().width()) << qPrintable(each->accessibleName());
        EXPECT_TRUE(panel->rect().contains(QRect(each->mapTo(panel, QPoint()), each->size())) ||
                    table().isAncestorOf(each) || each->inherits("QAbstractScrollArea") ||
                    each->parentWidget()->inherits("QTabBar"))
            << each->metaObject()->className() << qPrintable(each->accessibleName());
    }
    EXPECT_GE(table().height(), 5 * 28);
}

TEST_F(Layout, without_the_picture_the_usual_window_shows_fourteen_cues)
{
    load(QStringList(20, u"好"_s));
    const auto rows = [this] { return table().viewport()->height() / VELTheme::rowHeight; };
    const int before = rows();
    click(u"预览"_s);
    EXPECT_FALSE(model.window().inspectorShown());
    EXPECT_GT(rows(), before);
    EXPECT_GE(rows(), 14);
    click(u"预览"_s);
    EXPECT_EQ(rows(), before);
}

TEST_F(Layout, a_chosen_appearance_is_that_of_all_widgets_until_the_systems_is_wanted_again)
{
    load({u"一"_s});
    const QColor usual = panel->palette().color(QPalette::WindowText);
    for (const auto &[choice, appearance] : {std::pair(WindowState::Appearance::dark, VELTheme::Appearance::dark),
                                             std::pair(WindowState::Appearance::light, VELTheme::Appearance::light)}) {
        model.window().setAppearance(choice);
        Events::handle();
        EXPECT_EQ(VELTheme::colors(table()).text, VELTheme::colors(appearance).text);
        EXPECT_EQ(QApplication::palette().color(QPalette::Window), VELTheme::colors(appearance).window);
    }
    model.window().setAppearance(WindowState::Appearance::system);
    EXPECT_EQ(panel->palette().color(QPalette::WindowText), usual);
}

TEST_F(Layout, files_are_dropped_anywhere_and_text_where_it_is_typed)
{
    load({u"一"_s});
    const auto drop = [](QWidget *target, const QMimeData &data) {
        QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        for (QWidget *each = target; each && !enter.isAccepted(); each = each->parentWidget()) {
            if (each->acceptDrops()) // as the system looks for one
                QApplication::sendEvent(each, &enter);
            target = each;
        }
        if (enter.isAccepted()) {
            QDropEvent event(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(target, &event);
        }
        return enter.isAccepted();
    };
    QMimeData file;
    file.setUrls({outside.srt(u"新.srt"_s, 3)});
    file.setText(u"file:///新.srt"_s); // as file managers offer it too
    QMimeData text;
    text.setText(u"字"_s);
    edit(0);
    QWidget *const targets[] = {find<QLineEdit>(u"筛选字幕"_s), editor()->viewport(), table().viewport(),
                                button(u"一键清理"_s)};
    for (QWidget *const target : targets) {
        load({u"一"_s});
        edit(0);
        ASSERT_TRUE(drop(target == targets[1] ? editor()->viewport() : target, file));
        EXPECT_TRUE(Events::waitFor([&] { return model.items().size() == 3; }));
    }
    EXPECT_FALSE(drop(table().viewport(), text));
    EXPECT_TRUE(drop(targets[0], text));
    EXPECT_EQ(find<QLineEdit>(u"筛选字幕"_s)->text(), u"字"_s);
}

TEST_F(Layout, a_project_stays_in_sight_until_it_is_let_go)
{
    load({u"一"_s});
    const auto said = [this](const QString &name) {
        const auto *const label = find<QLabel>(name);
        return label ? label->text() : QString();
    };
    EXPECT_EQ(said(u"FCP 项目"_s), QString());
    model.load(outside.file(u"粗剪.fcpxml"_s, StoryDocument::project("100s", {tag("gap offset=0s duration=100s")})));
    ASSERT_TRUE(Events::waitFor([&] { return model.keptProject().project().has_value(); }));
    EXPECT_EQ(said(u"FCP 项目"_s), u"Film"_s);
    EXPECT_EQ(said(u"项目规格"_s), u"25 帧/秒 · 1920×1080"_s);
    click(u"放开项目"_s);
    EXPECT_FALSE(model.keptProject().project());
    EXPECT_EQ(said(u"FCP 项目"_s), QString());
}

TEST_F(Layout, separated_languages_are_offered_to_stand_above_each_other)
{
    load({u"你好\nhello"_s, u"再见\nbye"_s});
    EXPECT_EQ(button(u"错开高度"_s), nullptr);
    click(u"分离中英"_s);
    click(u"保持同一高度"_s);
    EXPECT_EQ(button(u"错开高度"_s), nullptr);
    model.undo();
    click(u"分离中英"_s);
    const LintoraSession before = model.snapshot();
    click(u"错开高度"_s);
    const QList<SubtitleTrack> tracks = model.visibleTracks();
    EXPECT_EQ(tracks.last().options.bottomPercent, 10);
    EXPECT_GT(tracks.first().options.bottomPercent, 12);
    EXPECT_EQ(button(u"错开高度"_s), nullptr);
    EXPECT_TRUE(table().hasFocus());
    model.undo();
    EXPECT_EQ(model.snapshot(), before);
}

TEST_F(Layout, a_long_file_name_keeps_its_end)
{
    load({u"一"_s});
    LintoraSession job = model.snapshot();
    job.source = QString(100, u'长') + u"_终稿_A.srt"_s;
    model.apply(job);
    Events::handle();
    EXPECT_TRUE(find<ElidedLabel>(u"字幕来源"_s)->shownText().endsWith(u"_终稿_A.srt"));
}

TEST_F(Layout, tabs_show_the_tracks_and_change_them)
{
    loadTracks({u"一"_s, u"二"_s}, {u"one"_s});
    auto *const tabs = find<QTabBar>(u"语言组"_s);
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), u"中文 2"_s);
    EXPECT_EQ(tabs->tabText(1), u"English 1"_s);
    table().goTo(1);
    tabs->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(table().currentCue(), 0);
    EXPECT_EQ(texts(), QStringList{u"one"_s});
    model.insertCue(0);
    EXPECT_EQ(tabs->tabText(1), u"English 2"_s);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(0).center());
    Events::handle();
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"二"_s}));
    EXPECT_EQ(table().currentCue(), 1); // where we were
}

TEST_F(Layout, buttons_do_what_they_say)
{
    load({u"嗯好的。一起来。"_s});
    click(u"去标点并分句"_s);
    EXPECT_TRUE(model.removePunctuation());
    click(u"一键清理"_s);
    EXPECT_EQ(texts(), (QStringList{u"嗯好的"_s, u"一起来"_s}));
    QTest::mouseClick(button(u"撤销"_s), Qt::LeftButton, {}, QPoint(10, 10));
    EXPECT_EQ(texts(), QStringList{u"嗯好的。一起来。"_s});
    click(u"置顶"_s);
    EXPECT_FALSE(model.window().pinned());
    EXPECT_FALSE(button(u"置顶"_s)->isChecked());
}

TEST_F(Layout, restoring_the_original_asks_first)
{
    load({u"你好\nhello"_s, u"再见\nbye"_s});
    click(u"分离中英"_s);
    EXPECT_EQ(model.visibleTracks().size(), 2);
    EXPECT_EQ(button(u"分离中英"_s), nullptr);
    click(u"恢复原稿"_s);
    EXPECT_TRUE(visibleTexts().contains(u"恢复分离前原稿？"_s));
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"取消"_s) << "Return loses nothing";
    press(Qt::Key_Escape);
    EXPECT_EQ(model.visibleTracks().size(), 2);
    EXPECT_FALSE(visibleTexts().contains(u"恢复分离前原稿？"_s));

    click(u"恢复原稿"_s);
    model.undo();
    EXPECT_FALSE(visibleTexts().contains(u"恢复分离前原稿？"_s)) << "nothing is left to be restored";
    model.redo();
    click(u"恢复原稿"_s);
    for (Sheet *const sheet : panel->findChildren<Sheet *>()) {
        if (!sheet->isVisible())
            continue;
        for (QPushButton *const each : sheet->findChildren<QPushButton *>()) {
            if (each->text() == u"恢复原稿"_s)
                QTest::mouseClick(each, Qt::LeftButton);
        }
    }
    EXPECT_EQ(texts(), (QStringList{u"你好\nhello"_s, u"再见\nbye"_s}));
}

TEST_F(Layout, a_job_that_owns_the_cues_disables_what_would_change_them)
{
    load({u"一"_s});
    OwnedCues owned(model);
    Events::handle();
    for (const QString &name : {u"一键清理"_s, u"撤销"_s, u"查找替换"_s, u"分离中英"_s})
        EXPECT_FALSE(button(name)->isEnabled()) << qPrintable(name);
    owned.end();
    EXPECT_TRUE(button(u"一键清理"_s)->isEnabled());
}

TEST_F(Layout, exports_are_offered_for_a_document_and_for_a_project)
{
    const auto *const fcpxml = panel->findChild<CardRow *>()->findChild<QMenu *>();
    const auto offered = [&] {
        QStringList entries;
        for (const QAction *const action : fcpxml->actions()) {
            if (action->isVisible() && !action->isSeparator())
                entries += action->text();
        }
        return entries;
    };
    load({u"一"_s});
    EXPECT_EQ(offered(), (QStringList{u"独立文档"_s, u"写入项目…"_s, u"写回项目标题…"_s}));
    EXPECT_EQ(button(u"拖到 FCP 时间线 · 全部语言"_s), nullptr);
    loadTracks({u"一"_s}, {u"one"_s});
    EXPECT_EQ(offered(), (QStringList{u"独立文档"_s, u"写入项目…"_s, u"写回项目标题…"_s, u"独立文档（全部语言）"_s,
                                      u"写入项目（全部语言）…"_s}));
    QAbstractButton *const card = button(u"拖到 FCP 时间线 · 全部语言"_s);
    ASSERT_NE(card, nullptr);
    QTest::keyClick(card, Qt::Key_Return);
    auto *const copying = card->findChild<QMenu *>();
    ASSERT_NE(copying, nullptr);
    copying->actions().first()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->data(FCPPasteboard::fcpTypes().first()), *model.payloadOfAll());
}

} // namespace
