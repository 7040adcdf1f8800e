#include "app/window/LintoraApplicationDelegate.h"

#include "app/fonts/FontCatalogue.h"
#include "app/window/LintoraContainer.h"
#include "store/LintoraSession.h"
#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/OwnedCues.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QFileOpenEvent>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usual(640, 790);
constexpr QSize least(560, 650);

class Application : public testing::Test
{
protected:
    /// Launches; whatever ran before has ended.
    LintoraApplicationDelegate &launch()
    {
        m_delegate.reset();
        m_delegate = std::make_unique<LintoraApplicationDelegate>([](LintoraModel &) { return new QWidget; },
                                                                  outside.surroundings());
        m_delegate->applicationDidFinishLaunching();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_delegate->window()));
        return *m_delegate;
    }

    QMenu *menu(int index) const { return m_delegate->menuBar()->actions().at(index)->menu(); }

    /// The entry that bears this text.
    QAction *entry(const QString &text) const
    {
        for (const int index : {0, 1, 2}) {
            for (QAction *const action : menu(index)->actions()) {
                if (action->text() == text)
                    return action;
            }
        }
        return nullptr;
    }

    /// "Title  key", a line each; "-" for a separator.
    QStringList lines(int index) const
    {
        QStringList result;
        for (const QAction *const action : menu(index)->actions()) {
            const QString key = action->shortcut().toString(QKeySequence::PortableText);
            result += action->isSeparator() ? u"-"_s : (action->text() + u' ' + key).trimmed();
        }
        return result;
    }

    qint64 level() const { return Platform::standing(*m_delegate->window()->windowHandle()).level; }

    TemporaryModel outside;

private:
    std::unique_ptr<LintoraApplicationDelegate> m_delegate;
};

TEST_F(Application, has_its_commands_in_three_menus)
{
    launch();
    EXPECT_EQ(lines(0), QStringList({u"打开 SRT… Ctrl+O"_s, u"从 FCP 导入…"_s, u"从音视频生成字幕… Ctrl+Shift+O"_s,
                                     u"最近的字幕"_s, u"历史版本… Ctrl+Shift+H"_s, u"导出"_s, u"翻译…"_s, u"AI 校对…"_s,
                                     u"文稿匹配…"_s, u"整理"_s, u"字幕样式… Ctrl+,"_s, u"清理设置…"_s, u"AI 设置…"_s,
                                     u"画面预览 Ctrl+I"_s, u"外观"_s, u"键盘操作 Ctrl+/"_s, u"-"_s,
                                     u"退出 VELMORA 字幕助手 Ctrl+Q"_s}));
    EXPECT_EQ(menu(1)->title(), u"编辑"_s);
    EXPECT_EQ(lines(1),
              QStringList({u"撤销 Ctrl+Z"_s, u"重做 Ctrl+Shift+Z"_s, u"剪切 Ctrl+X"_s, u"复制 Ctrl+C"_s,
                           u"粘贴 Ctrl+V"_s, u"全选 Ctrl+A"_s, u"-"_s, u"插入字幕 Ctrl+Return"_s, u"拆分 Ctrl+K"_s,
                           u"与下一条合并 Ctrl+J"_s, u"删除字幕 Ctrl+Backspace"_s, u"移动时间… Ctrl+Shift+T"_s, u"-"_s,
                           u"查找下一处 Ctrl+G"_s, u"查找上一处 Ctrl+Shift+G"_s, u"下一处提醒 Ctrl+;"_s,
                           u"下一处可疑 Ctrl+'"_s, u"-"_s, u"查找与替换… Ctrl+F"_s}));
    EXPECT_EQ(menu(2)->title(), u"播放"_s);
    EXPECT_EQ(lines(2), QStringList({u"时间条 Ctrl+T"_s, u"-"_s, u"播放或停止"_s, u"播放这一条 Ctrl+P"_s,
                                     u"播放开头半秒"_s, u"播放结尾半秒"_s, u"循环播放 Ctrl+L"_s,
                                     u"逐条播放 Ctrl+Shift+P"_s, u"-"_s, u"开始时间设为播放头 Ctrl+["_s,
                                     u"结束时间设为播放头 Ctrl+]"_s, u"在播放头拆分 Ctrl+Shift+K"_s}));
}

TEST_F(Application, playing_is_offered_while_the_strip_is_shown_and_there_are_cues)
{
    LintoraModel &model = launch().model();
    QList<PlayCommand> asked;
    QObject::connect(&model.window(), &WindowState::playRequested, &model, [&](PlayCommand each) { asked += each; });
    QTest::keyClick(qApp->focusWindow(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(model.window().stripShown());
    EXPECT_TRUE(entry(u"时间条"_s)->isChecked());
    EXPECT_FALSE(entry(u"播放这一条"_s)->isEnabled()) << "there is nothing yet";
    model.insertCue(-1);
    QTest::keyClick(qApp->focusWindow(), Qt::Key_P, Qt::ControlModifier);
    QTest::keyClick(qApp->focusWindow(), Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_EQ(asked, (QList{PlayCommand::playCue, PlayCommand::startHere}));
    QTest::keyClick(qApp->focusWindow(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_FALSE(model.window().stripShown());
    EXPECT_FALSE(entry(u"播放这一条"_s)->isEnabled());
}

TEST_F(Application, menus_keep_what_is_typed_before_cues_go_and_list_their_keys)
{
    LintoraModel &model = launch().model();
    EXPECT_FALSE(entry(u"导出"_s)->menu()->isEnabled()) << "there is nothing yet";
    model.insertCue(-1);
    QAction *const breaking = entry(u"整理"_s)->menu()->actions().first();
    bool mayAct = false;
    model.window().keepTyped = [&] { return mayAct; };
    for (const bool may : {false, true}) {
        mayAct = may;
        breaking->trigger();
        EXPECT_EQ(model.cueTools().tool().has_value(), may) << "what is being typed was refused";
    }
    model.window().keepTyped = nullptr;
    QStringList titles;
    for (const WindowState::MenuKey &key : model.window().menuKeys())
        titles += key.menu + u' ' + key.title;
    EXPECT_TRUE(titles.contains(u"编辑 拆分"_s));
    EXPECT_TRUE(titles.contains(u"VELMORA 字幕助手 导出 SRT…"_s)) << "what lies in a menu within";
    EXPECT_FALSE(titles.contains(u"VELMORA 字幕助手 清理设置…"_s)) << "no key";
    QTest::keyClick(qApp->focusWindow(), Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_TRUE(model.window().keysVisible());
}

TEST_F(Application, what_the_window_shows_is_chosen_in_the_menu_and_kept)
{
    using Appearance = WindowState::Appearance;
    launch();
    EXPECT_TRUE(entry(u"画面预览"_s)->isChecked());
    entry(u"画面预览"_s)->trigger();
    entry(u"外观"_s)->menu()->actions().last()->trigger();
    WindowState &window = launch().model().window();
    EXPECT_FALSE(window.inspectorShown());
    EXPECT_FALSE(entry(u"画面预览"_s)->isChecked());
    EXPECT_EQ(window.appearance(), Appearance::dark);
    EXPECT_TRUE(entry(u"外观"_s)->menu()->actions().last()->isChecked());
    entry(u"外观"_s)->menu()->actions().first()->trigger();
    EXPECT_EQ(launch().model().window().appearance(), Appearance::system);
}

TEST_F(Application, begins_with_the_default_font)
{
    EXPECT_EQ(launch().model().options().font, FontCatalogue::defaultFamily());
}

TEST_F(Application, commands_open_what_they_name)
{
    LintoraModel &model = launch().model();
    QTest::keyClick(qApp->focusWindow(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(outside.openings.size(), 1);
    entry(u"从 FCP 导入…"_s)->trigger();
    EXPECT_TRUE(model.window().fcpImportVisible());
    QTest::keyClick(qApp->focusWindow(), Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(model.window().settingsVisible());
    entry(u"清理设置…"_s)->trigger();
    EXPECT_TRUE(model.window().cleanupSettingsVisible());
    entry(u"文稿匹配…"_s)->trigger();
    EXPECT_TRUE(model.window().scriptMatchPresented());
}

TEST_F(Application, finding_waits_for_the_end_of_a_job)
{
    LintoraApplicationDelegate &delegate = launch();
    LintoraModel &model = delegate.model();
    OwnedCues owned(model);
    EXPECT_FALSE(entry(u"查找与替换…"_s)->isEnabled());
    QTest::keyClick(qApp->focusWindow(), Qt::Key_F, Qt::ControlModifier);
    delegate.openFindReplace();
    EXPECT_FALSE(model.window().findReplaceVisible());
    owned.end();
    QTest::keyClick(qApp->focusWindow(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(model.window().findReplaceVisible());
}

/// The usual size of the content, which a menu bar takes nothing of; unless the screen is too low for both.
QSize sizeOnScreen(const FloatingWindow &window)
{
    const int room = window.screen()->availableGeometry().height() - window.menuWidget()->height();
    return {usual.width(), std::min(usual.height(), room)};
}

TEST_F(Application, the_window_opens_in_the_middle_and_later_where_it_was_left)
{
    const QPoint middle = launch().window()->screen()->availableGeometry().center();
    FloatingWindow *window = launch().window();
    EXPECT_EQ(window->windowTitle(), u"VELMORA 字幕助手"_s);
    EXPECT_EQ(window->centralWidget()->size(), sizeOnScreen(*window));
    // The screen of these tests is as low as the window is high: its frame may push it.
    const QPoint off = window->geometry().center() - middle;
    EXPECT_LE(std::abs(off.x()), 2);
    EXPECT_LE(std::abs(off.y()), window->menuWidget()->height());

    window->resize(10, 10);
    EXPECT_EQ(window->centralWidget()->size(), least);
    window->move(70, 60);
    const QRect left = window->geometry();
    window->close();
    EXPECT_EQ(launch().window()->geometry(), left);
}

TEST_F(Application, a_window_from_before_the_newer_layout_is_enlarged_once)
{
    launch().window()->resize(600, 700);
    launch(); // which ends the one before
    QSettings(outside.path(u"settings.ini"_s), QSettings::IniFormat).setValue(u"expandedActionsLayout"_s, false);
    FloatingWindow *const window = launch().window();
    EXPECT_EQ(window->centralWidget()->size(), sizeOnScreen(*window));
}

TEST_F(Application, a_pinned_window_stands_above_others_and_an_unpinned_one_among_them)
{
    LintoraApplicationDelegate &delegate = launch();
    EXPECT_EQ(level(), 3);
    EXPECT_FALSE(Platform::standing(*delegate.window()->windowHandle()).hidesOnDeactivate);
    delegate.model().toggleFloating();
    EXPECT_EQ(level(), 0);
    EXPECT_TRUE(delegate.window()->isVisible());
    EXPECT_FALSE(Platform::standing(*delegate.window()->windowHandle()).hidesOnDeactivate);
    delegate.model().toggleFloating();
    EXPECT_EQ(level(), 3);
}

TEST_F(Application, a_window_that_is_made_anew_is_still_pinned)
{
    FloatingWindow *const window = launch().window();
    window->setWindowFlags(window->windowFlags() | Qt::WindowMaximizeButtonHint);
    window->show();
    EXPECT_EQ(level(), 3);
    window->setWindowState(Qt::WindowFullScreen);
    window->setWindowState(Qt::WindowNoState);
    EXPECT_EQ(level(), 3);
}

struct RaiseCase
{
    const char *name;
    std::function<void(LintoraApplicationDelegate &)> before;
    bool raises;
};

class Raising : public Application, public testing::WithParamInterface<RaiseCase>
{};

// Whether the window was touched shows in its level, which is taken away before.
TEST_P(Raising, happens_only_while_the_pinned_window_can_be_seen_and_nothing_is_dragged)
{
    LintoraApplicationDelegate &delegate = launch();
    GetParam().before(delegate);
    Events::handle();
    delegate.window()->windowHandle()->setFlag(Qt::WindowStaysOnTopHint, false);
    const bool wasVisible = delegate.window()->isVisible();
    delegate.model().window().raisePinnedWindow();
    EXPECT_EQ(level(), GetParam().raises ? 3 : 0);
    EXPECT_EQ(delegate.window()->isVisible(), wasVisible);
}

INSTANTIATE_TEST_SUITE_P(
    When, Raising,
    testing::Values(
        RaiseCase{"Pinned", [](LintoraApplicationDelegate &) {}, true},
        RaiseCase{"Not_pinned", [](LintoraApplicationDelegate &delegate) { delegate.model().toggleFloating(); }, false},
        RaiseCase{"Dragging",
                  [](LintoraApplicationDelegate &delegate) { delegate.model().window().subtitleDragInProgress = true; },
                  false},
        RaiseCase{"Closed", [](LintoraApplicationDelegate &delegate) { delegate.window()->close(); }, false},
        RaiseCase{"Minimised", [](LintoraApplicationDelegate &delegate) { delegate.window()->showMinimized(); },
                  false}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(Application, raising_after_the_delegate_is_gone_does_nothing)
{
    std::function<void()> raise;
    {
        const TemporaryModel other;
        LintoraApplicationDelegate delegate([](LintoraModel &) { return new QWidget; }, outside.surroundings());
        delegate.applicationDidFinishLaunching();
        raise = delegate.model().window().raisePinnedWindow;
    }
    raise();
}

TEST_F(Application, an_opened_file_is_loaded_and_brings_the_window_back)
{
    LintoraApplicationDelegate &delegate = launch();
    delegate.window()->close();
    const QUrl file = outside.srt(u"访谈 一.srt"_s, 3);
    QFileOpenEvent event(file);
    QCoreApplication::sendEvent(qApp, &event);
    EXPECT_TRUE(Events::waitFor([&] { return delegate.model().items().size() == 3; }));
    EXPECT_TRUE(Events::waitFor([&] { return delegate.window()->isVisible(); }));
}

TEST_F(Application, opened_links_reach_the_model_one_by_one)
{
    LintoraApplicationDelegate &delegate = launch();
    const QSignalSpy failures(&delegate.model(), &LintoraModel::failureChanged);
    delegate.window()->showMinimized();
    delegate.open({QUrl(u"file:///unknown.txt"_s), outside.srt(u"a.srt"_s, 2)});
    EXPECT_EQ(failures.size(), 1);
    EXPECT_FALSE(delegate.window()->isMinimized());
    EXPECT_TRUE(Events::waitFor([&] { return delegate.model().items().size() == 2; }));
    EXPECT_EQ(delegate.model().failure(), std::nullopt);
}

TEST_F(Application, a_command_brings_a_closed_window_back)
{
    LintoraApplicationDelegate &delegate = launch();
    delegate.window()->close();
    entry(u"清理设置…"_s)->trigger();
    EXPECT_TRUE(delegate.window()->isVisible());
}

TEST_F(Application, closing_the_window_asks_before_unsaved_work_is_lost)
{
    LintoraApplicationDelegate &delegate = launch();
    delegate.model().load(outside.srt(u"a.srt"_s, 2));
    ASSERT_TRUE(Events::waitFor([&] { return delegate.model().items().size() == 2; }));
    delegate.model().setText(0, QString(17'000'000, u'a')); // more than a draft holds
    const bool staysOpen = !Platform::programOutlivesWindow();
    EXPECT_EQ(delegate.window()->close(), !staysOpen);
    QEvent quit(QEvent::Quit);
    quit.accept();
    QCoreApplication::sendEvent(qApp, &quit);
    EXPECT_FALSE(quit.isAccepted());
    EXPECT_TRUE(delegate.model().quitQuestion().has_value());
    EXPECT_TRUE(delegate.window()->isVisible());
    delegate.model().answerQuit(true);
    EXPECT_TRUE(delegate.window()->close());
}

TEST_F(Application, recent_subtitles_are_in_the_menu)
{
    LintoraApplicationDelegate &delegate = launch();
    QMenu &recent = *entry(u"最近的字幕"_s)->menu();
    EXPECT_FALSE(recent.isEnabled());
    delegate.model().load(outside.srt(u"a&b.srt"_s, 2));
    ASSERT_TRUE(Events::waitFor([&] { return delegate.model().items().size() == 2; }));
    delegate.model().setText(0, u"改过"_s);
    delegate.model().load(outside.srt(u"c.srt"_s, 1));
    const auto title = [&](qsizetype at) {
        return recent.actions().value(at) ? recent.actions()[at]->text() : QString();
    };
    ASSERT_TRUE(Events::waitFor([&] { return title(0).startsWith(u"c.srt   字幕文件 · "_s); }));
    EXPECT_TRUE(title(1).startsWith(u"a&&b.srt   改过的字幕 · "_s));
    EXPECT_TRUE(title(2).startsWith(u"a&&b.srt   字幕文件 · "_s));
    recent.actions()[1]->trigger();
    EXPECT_TRUE(Events::waitFor([&] { return delegate.model().items().value(0).text == u"改过"_s; }));
}

TEST_F(Application, the_last_change_is_saved_at_the_end)
{
    LintoraApplicationDelegate &delegate = launch();
    delegate.model().load(outside.srt(u"a.srt"_s, 2));
    ASSERT_TRUE(Events::waitFor([&] { return delegate.model().items().size() == 2; }));
    delegate.model().setText(0, u"改过"_s);
    delegate.applicationWillTerminate();
    QFile draft(outside.path(u"Draft.json"_s));
    ASSERT_TRUE(draft.open(QIODevice::ReadOnly));
    EXPECT_TRUE(draft.readAll().contains("改过"));
}

TEST_F(Application, notes_how_the_window_stands_when_another_program_becomes_active)
{
    LintoraApplicationDelegate &delegate = launch();
    const LoggedLines logged;
    Q_EMIT qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_EQ(logged.lines,
              QStringList(u"FloatingWindow: Resigned active: visible=true hidesOnDeactivate=false level=3"_s));
    EXPECT_TRUE(delegate.window()->isVisible());
}

struct ArgumentCase
{
    const char *name;
    QString argument;
    QString url;
};

class Argument : public testing::TestWithParam<ArgumentCase>
{};

TEST_P(Argument, names_a_file_or_a_link)
{
    EXPECT_EQ(LintoraContainer::urls({GetParam().argument}, u"/影片"_s),
              QList<QUrl>({QUrl(GetParam().url, QUrl::StrictMode)}));
}

INSTANTIATE_TEST_SUITE_P(Forms, Argument,
                         testing::Values(ArgumentCase{"Relative", u"a b.srt"_s, u"file:///影片/a%20b.srt"_s},
                                         ArgumentCase{"Above", u"../x.srt"_s, u"file:///x.srt"_s},
                                         ArgumentCase{"Absolute", u"/x/100%.srt"_s, u"file:///x/100%25.srt"_s},
                                         ArgumentCase{"File_link", u"file:///x.srt"_s, u"file:///x.srt"_s},
                                         ArgumentCase{"Link", u"lintora://floating?session=/a%20b"_s,
                                                      u"lintora://floating?session=/a%20b"_s},
                                         ArgumentCase{"Colon_in_a_name", u"第1集:开场.srt"_s,
                                                      u"file:///影片/第1集:开场.srt"_s}),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
