// The strip in the window: the mouse on it, the keys of playing, and what table and strip tell each other.

#include "app/Lintora/sound/TimingStrip.h"

#include "app/Lintora/cues/Inspector.h"
#include "app/Lintora/sound/Player.h"
#include "app/Lintora/sound/StripHandle.h"
#include "app/Lintora/sound/StripPainter.h"
#include "app/Lintora/sound/StripView.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/OwnedCues.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTest>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

class TimingStripTest : public PanelTest
{
protected:
    TimingStripTest()
    {
        model.window().setStripShown(true);
        load({u"一"_s, u"二"_s, u"三"_s});
        model.cueTiming().setTimes({{0, 1'000, 2'000}, {1, 2'000, 3'000}, {2, 4'000, 5'000}});
        Events::handle();
    }

    TimingStrip &strip() { return *panel->findChild<TimingStrip *>(); }
    StripView &view() { return strip().view(); }
    Player &player() { return *panel->findChild<Player *>(); }

    /// One that is played by the clock alone: no test waits for a sound card.
    void giveMedium()
    {
        model.recognition().setMedia(outside.file(u"声音.wav"_s, "RIFF"));
        EXPECT_TRUE(Events::waitFor([this] { return !model.sound().isReading(); }));
        Events::handle();
        player().setFile({});
    }

    QPoint at(qint64 ms, int y = 50) { return {qRound(view().scale().x(ms)), y}; }

    void mouse(QEvent::Type type, QPoint place, Qt::KeyboardModifiers modifiers = {})
    {
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, place, view().mapToGlobal(QPointF(place)),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, modifiers);
        QApplication::sendEvent(&view(), &event);
    }

    /// Without letting go.
    void hold(qint64 fromMS, qint64 toMS, Qt::KeyboardModifiers modifiers = {})
    {
        mouse(QEvent::MouseButtonPress, at(fromMS), modifiers);
        mouse(QEvent::MouseMove, at((fromMS + toMS) / 2), modifiers);
        mouse(QEvent::MouseMove, at(toMS), modifiers);
    }

    void drag(qint64 fromMS, qint64 toMS, Qt::KeyboardModifiers modifiers = {})
    {
        hold(fromMS, toMS, modifiers);
        mouse(QEvent::MouseButtonRelease, at(toMS), modifiers);
        Events::handle();
    }

    QString times() const
    {
        QStringList times;
        for (const Subtitle &cue : model.items())
            times += u"%1-%2"_s.arg(cue.start).arg(cue.end);
        return times.join(u' ');
    }

    void wheel(int turned, Qt::KeyboardModifiers modifiers, double x)
    {
        const QPointF place(x, 40);
        QWheelEvent event(place, view().mapToGlobal(place), {}, {0, turned}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&view(), &event);
    }

    const QString before = u"1000-2000 2000-3000 4000-5000"_s;
};

} // namespace

TEST_F(TimingStripTest, is_folded_until_it_is_asked_for_and_leaves_six_rows)
{
    window.resize(560, 650);
    Events::handle();
    EXPECT_GE(table().viewport()->height(), 6 * 28);
    EXPECT_TRUE(panel->rect().contains(QRect(strip().mapTo(panel, QPoint()), strip().size())));
    EXPECT_FALSE(panel->findChild<Inspector *>()->isVisible()) << "the picture makes room";
    view().setFocus();
    model.window().setStripShown(false);
    EXPECT_FALSE(strip().isVisible());
    EXPECT_TRUE(table().hasFocus());
    LintoraModel next(outside.surroundings());
    EXPECT_FALSE(next.window().stripShown());
    next.window().setStripShown(true);
    EXPECT_TRUE(LintoraModel(outside.surroundings()).window().stripShown());
}

TEST_F(TimingStripTest, its_height_is_dragged_and_kept_and_never_takes_the_tables_rows)
{
    window.resize(640, 1'000);
    Events::handle();
    auto *const handle = find<StripHandle>(u"时间条高度"_s);
    const int usual = strip().height();
    handle->setFocus();
    press(Qt::Key_Up);
    EXPECT_EQ(strip().height(), usual + 8);
    EXPECT_EQ(model.preferences().stripHeight(), usual + 8);
    for (int i = 0; i < 60; ++i)
        press(Qt::Key_Up);
    EXPECT_GE(table().viewport()->height(), 6 * 28);
    EXPECT_EQ(model.preferences().stripHeight(), strip().height());
    QTest::mousePress(handle, Qt::LeftButton, {}, {40, 4});
    QMouseEvent move(QEvent::MouseMove, QPointF(40, 24), handle->mapToGlobal(QPointF(40, 24)), Qt::NoButton,
                     Qt::LeftButton, {});
    const int high = strip().height();
    QApplication::sendEvent(handle, &move);
    Events::handle();
    QTest::mouseRelease(handle, Qt::LeftButton, {}, {40, 4});
    EXPECT_EQ(strip().height(), high - 20);
}

TEST_F(TimingStripTest, a_drag_is_one_step_and_is_seen_before_it_is_taken)
{
    hold(5'000, 5'540);
    EXPECT_EQ(times(), before);
    mouse(QEvent::MouseButtonRelease, at(5'540));
    EXPECT_EQ(times(), u"1000-2000 2000-3000 4000-5533"_s);
    EXPECT_EQ(table().currentCue(), 2);
    model.undo();
    EXPECT_EQ(times(), before);
    drag(2'000, 2'600);
    EXPECT_EQ(times(), u"1000-2600 2600-3000 4000-5000"_s) << "both that touch";
    model.undo();
    drag(1'990, 1'590, Qt::ControlModifier);
    EXPECT_EQ(times(), u"1000-1600 2000-3000 4000-5000"_s) << "one alone";
    model.undo();
    drag(4'500, 2'000);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 3000-4000"_s) << "a whole cue, up to its neighbour";
    model.undo();
    drag(4'500, 2'700, Qt::ShiftModifier);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 2200-3200"_s) << "over it";
    model.undo();
    EXPECT_EQ(times(), before);
}

TEST_F(TimingStripTest, escape_takes_a_drag_back_and_so_does_a_change_from_elsewhere)
{
    view().setFocus();
    hold(5'000, 5'500);
    press(Qt::Key_Escape);
    mouse(QEvent::MouseButtonRelease, at(5'500));
    EXPECT_EQ(times(), before);
    hold(5'000, 5'500);
    model.setText(0, u"别处"_s);
    mouse(QEvent::MouseButtonRelease, at(5'500));
    EXPECT_EQ(times(), before);
}

TEST_F(TimingStripTest, nothing_is_dragged_while_the_cues_have_another_owner)
{
    const OwnedCues owned(model);
    drag(5'000, 5'500);
    EXPECT_EQ(times(), before);
    EXPECT_EQ(status(), u"任务处理中，请先取消再编辑字幕"_s);
}

TEST_F(TimingStripTest, a_new_cue_is_drawn_where_none_is_and_its_words_are_asked_for)
{
    drag(3'200, 3'800);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 3200-3800 4000-5000"_s);
    ASSERT_NE(editor(), nullptr);
    type(u"新"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(table().currentCue(), 2);
}

TEST_F(TimingStripTest, a_click_selects_and_puts_the_playhead_where_it_was)
{
    mouse(QEvent::MouseButtonPress, at(2'500));
    mouse(QEvent::MouseButtonRelease, at(2'500));
    EXPECT_EQ(table().currentCue(), 1);
    EXPECT_NEAR(double(player().positionMS()), 2'500, 12);
    mouse(QEvent::MouseButtonPress, at(4'500, view().height() - 8));
    mouse(QEvent::MouseButtonRelease, at(4'500, view().height() - 8));
    EXPECT_EQ(table().currentCue(), 2) << "on its text";
    EXPECT_NEAR(double(player().positionMS()), 2'500, 12) << "which is for choosing alone";
    mouse(QEvent::MouseButtonPress, at(1'000, 4));
    mouse(QEvent::MouseMove, at(1'300, 4));
    EXPECT_NEAR(double(player().positionMS()), 1'300, 12) << "along the ruler";
    mouse(QEvent::MouseButtonRelease, at(1'300, 4));
    mouse(QEvent::MouseButtonDblClick, at(1'500));
    EXPECT_NE(editor(), nullptr);
    EXPECT_EQ(times(), before);
}

TEST_F(TimingStripTest, a_cue_chosen_in_the_table_comes_into_the_middle)
{
    load(QStringList(400, u"好"_s));
    table().goTo(300);
    Events::handle();
    EXPECT_NEAR(view().scale().x(601'000), view().width() / 2.0, 1);
    EXPECT_EQ(player().positionMS(), 600'000);
    const TimeScale scale = view().scale();
    mouse(QEvent::MouseButtonPress, at(602'500));
    mouse(QEvent::MouseButtonRelease, at(602'500));
    EXPECT_EQ(table().currentCue(), 301);
    EXPECT_EQ(view().scale(), scale) << "what was pointed at stays under the pointer";
}

TEST_F(TimingStripTest, the_wheel_and_two_fingers_scroll_and_zoom_at_the_pointer)
{
    load(QStringList(400, u"好"_s));
    const qint64 held = view().scale().time(200);
    wheel(240, Qt::ControlModifier, 200);
    EXPECT_LT(view().scale().msPerPoint(), TimeScale::usual);
    EXPECT_NEAR(double(view().scale().time(200)), double(held), 1);
    wheel(-120, Qt::NoModifier, 200);
    EXPECT_GT(view().scale().time(200), held);
    const double size = view().scale().msPerPoint();
    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, QPointF(300, 40),
                              QPointF(300, 40), view().mapToGlobal(QPointF(300, 40)), 0.5, {});
    QApplication::sendEvent(&view(), &pinch);
    EXPECT_NEAR(view().scale().msPerPoint(), size / 1.5, 0.001);
    view().setFocus();
    press(Qt::Key_Minus);
    EXPECT_GT(view().scale().msPerPoint(), size / 1.5);
}

TEST_F(TimingStripTest, letters_and_blank_play_only_where_nothing_is_typed)
{
    giveMedium();
    table().setFocus();
    press(Qt::Key_Space);
    EXPECT_TRUE(player().isPlaying());
    press(Qt::Key_L);
    EXPECT_EQ(player().rate(), 1.5);
    press(Qt::Key_K);
    EXPECT_FALSE(player().isPlaying());
    press(Qt::Key_K);
    EXPECT_EQ(player().rate(), 1);
    player().seek(3'000);
    press(Qt::Key_J);
    EXPECT_EQ(player().positionMS(), 2'000);
    edit(0);
    press(Qt::Key_Space);
    press(Qt::Key_L);
    EXPECT_FALSE(player().isPlaying());
    EXPECT_EQ(editor()->toPlainText().count(u'l', Qt::CaseInsensitive), 1);
    press(Qt::Key_Escape);
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QApplication::sendEvent(&table(), &query);
    EXPECT_FALSE(query.value(Qt::ImEnabled).toBool()) << "no input method takes the letters away";
    model.window().setStripShown(false);
    press(Qt::Key_Space);
    EXPECT_FALSE(player().isPlaying());
}

TEST_F(TimingStripTest, a_review_plays_each_cue_that_is_gone_to)
{
    giveMedium();
    table().setFocus();
    table().goTo(0);
    model.window().play(PlayCommand::review);
    EXPECT_TRUE(player().isPlaying());
    EXPECT_EQ(player().positionMS() / 1'000, 1);
    press(Qt::Key_Return);
    ASSERT_NE(editor(), nullptr);
    editor()->selectAll();
    type(u"改"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(texts().first(), u"改"_s);
    EXPECT_EQ(table().currentCue(), 1);
    EXPECT_EQ(player().positionMS() / 1'000, 2) << "while its text is open";
    EXPECT_TRUE(player().isPlaying());
    player().seek(3'990);
    EXPECT_TRUE(Events::waitFor([this] { return player().positionMS() >= 4'050; }));
    EXPECT_EQ(table().currentCue(), 1) << "playing on does not leave what is being typed";
}

TEST_F(TimingStripTest, the_table_follows_what_plays_from_cue_to_cue)
{
    giveMedium();
    table().goTo(0);
    player().seek(1'950);
    press(Qt::Key_Space);
    EXPECT_TRUE(Events::waitFor([this] { return table().currentCue() == 1; }));
    EXPECT_TRUE(player().isPlaying());
    press(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_TRUE(Events::waitFor([this] { return !player().isPlaying(); }));
    EXPECT_EQ(player().positionMS(), 3'000);
    EXPECT_EQ(table().currentCue(), 1) << "at its end, which is where another begins";
}

TEST_F(TimingStripTest, times_are_set_and_cues_cut_at_the_playhead)
{
    table().goTo(2);
    player().seek(4'200);
    model.window().play(PlayCommand::startHere);
    player().seek(4'800);
    model.window().play(PlayCommand::endHere);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 4200-4800"_s);
    edit(2);
    editor()->selectAll();
    type(u"三四"_s);
    player().seek(4'500);
    model.window().play(PlayCommand::cutHere);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 4200-4500 4500-4800"_s);
    EXPECT_EQ(texts().mid(2), (QStringList{u"三"_s, u"四"_s}));
    EXPECT_EQ(table().currentCue(), 3);
    model.window().setStripShown(false);
    model.window().play(PlayCommand::endHere);
    EXPECT_EQ(times(), u"1000-2000 2000-3000 4200-4500 4500-4800"_s);
}

TEST_F(TimingStripTest, says_what_to_do_where_there_is_no_sound)
{
    EXPECT_FALSE(button(u"播放或停止"_s)->isEnabled());
    click(u"选择音视频…"_s);
    EXPECT_EQ(outside.openings, QStringList{u"选择音视频"_s});
    giveMedium();
    EXPECT_TRUE(button(u"播放或停止"_s)->isEnabled());
}
