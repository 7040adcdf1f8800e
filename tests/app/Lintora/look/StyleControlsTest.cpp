// The controls, by mouse and keys: what each changes, and what it refuses.

#include "app/Lintora/controls/ColorField.h"
#include "app/Lintora/controls/Slider.h"
#include "app/Lintora/look/FrameSizes.h"
#include "app/Lintora/look/StylePreview.h"
#include "app/Lintora/look/TimeShift.h"
#include "tests/app/Lintora/look/StyleTest.h"
#include "tests/support/Events.h"
#include "tests/support/OwnedCues.h"

#include <QApplication>
#include <QColorDialog>
#include <QImage>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <qtestspontaneevent.h>

using namespace Qt::StringLiterals;

namespace {

using StyleControlsTest = StyleTest;

TEST_F(StyleControlsTest, each_field_changes_what_it_names_and_nothing_else_in_one_step)
{
    click(u"给文字加描边"_s);
    click(u"给文字加阴影"_s);
    struct Row
    {
        QString field;
        QString typed;
        std::function<void(Options &)> change;
    };
    const Row rows[] = {
        {u"字号"_s, u"72.5"_s, [](Options &o) { o.fontSize = 72.5; }},
        {u"字号"_s, u"６０ 点"_s, [](Options &o) { o.fontSize = 60; }},
        {u"颜色色值"_s, u"ffd400"_s, [](Options &o) { o.fontColor = u"1 0.8314 0 1"_s; }},
        {u"颜色不透明度"_s, u"50%"_s, [](Options &o) { o.fontColor = u"1 0.8314 0 0.5"_s; }},
        {u"距底部"_s, u"40"_s, [](Options &o) { o.bottomPercent = 40; }},
        {u"描边颜色色值"_s, u"#FF0000"_s, [](Options &o) { o.strokeColor = u"1 0 0 1"_s; }},
        {u"描边宽度"_s, u"20"_s, [](Options &o) { o.strokeWidth = 20; }},
        {u"阴影颜色不透明度"_s, u"0"_s, [](Options &o) { o.shadowColor = u"0 0 0 0"_s; }},
        {u"阴影模糊"_s, u"0.5"_s, [](Options &o) { o.shadowBlur = 0.5; }},
        {u"时间偏移"_s, u"-500"_s, [](Options &o) { o.shiftMS = -500; }},
        {u"时间偏移"_s, u"00:00:01,500"_s, [](Options &o) { o.shiftMS = 1'500; }},
        {u"项目名称"_s, u"Trailer"_s, [](Options &o) { o.name = u"Trailer"_s; }},
        {u"字幕角色"_s, u"titles.EN"_s, [](Options &o) { o.titleRole = u"titles.EN"_s; }},
        {u"字幕角色"_s, u""_s, [](Options &o) { o.titleRole = std::nullopt; }},
    };
    for (const Row &row : rows) {
        const Options before = model.options();
        Options expected = before;
        row.change(expected);
        int changes = 0;
        const auto counting = QObject::connect(&model, &LintoraModel::historyChanged, &model, [&] { ++changes; });
        enter(row.field, row.typed);
        press(Qt::Key_Return);
        EXPECT_EQ(changes, 1) << "the second time nothing was typed";
        QObject::disconnect(counting);
        EXPECT_EQ(model.options(), expected) << qPrintable(row.field);
        model.undo();
        EXPECT_EQ(model.options(), before) << qPrintable(row.field);
        model.redo();
    }
}

TEST_F(StyleControlsTest, what_is_no_value_stays_in_its_field_with_a_sentence)
{
    click(u"给文字加描边"_s);
    const Options before = model.options();
    const QString number = u"请输入 %1 到 %2 之间的数值。"_s;
    const QString shift = u"请输入毫秒数（如 -500），或 时:分:秒,毫秒（如 -00:00:01,500），不超过 24 小时。"_s;
    const std::tuple<QString, QString, QString> rows[] = {
        {u"字号"_s, u"0"_s, number.arg(u"0.1"_s, u"10000"_s)},
        {u"字号"_s, u"大"_s, number.arg(u"0.1"_s, u"10000"_s)},
        {u"字号"_s, u"nan"_s, number.arg(u"0.1"_s, u"10000"_s)},
        {u"距底部"_s, u"40.5"_s, number.arg(u"0"_s, u"40"_s)},
        {u"描边宽度"_s, u"20.1"_s, number.arg(u"0"_s, u"20"_s)},
        {u"描边宽度"_s, u"-1"_s, number.arg(u"0"_s, u"20"_s)},
        {u"颜色色值"_s, u"#12345"_s, u"请输入六位十六进制色值，如 #FFD400。"_s},
        {u"颜色不透明度"_s, u"101"_s, number.arg(u"0"_s, u"100"_s)},
        {u"时间偏移"_s, u"1.5"_s, shift},
        {u"时间偏移"_s, u"25:00:00,000"_s, shift},
        {u"项目名称"_s, u" "_s, u"请输入项目名称。"_s},
    };
    for (const auto &[name, typed, sentence] : rows) {
        enter(name, typed);
        press(Qt::Key_Tab);
        EXPECT_EQ(model.options(), before) << qPrintable(name);
        EXPECT_EQ(field(name)->text(), typed);
        EXPECT_TRUE(visibleTexts().contains(sentence)) << qPrintable(name) << qPrintable(visibleTexts().join(u'|'));
        field(name)->setFocus();
        press(Qt::Key_Escape);
        EXPECT_TRUE(model.window().settingsVisible()) << "only what was typed is left";
        EXPECT_FALSE(visibleTexts().contains(sentence)) << qPrintable(name);
    }
}

TEST_F(StyleControlsTest, dragging_a_slider_is_one_step_and_the_title_follows)
{
    auto *const slider = find<Slider>(u"字号滑块"_s);
    ASSERT_NE(slider, nullptr);
    const int before = steps();
    QList<double> sizes;
    QObject::connect(&model, &LintoraModel::optionsChanged, &model, [&] { sizes += model.options().fontSize; });
    QTest::mousePress(slider, Qt::LeftButton, {}, {40, 14});
    for (const int x : {60, 90, 120, 150}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 14), slider->mapToGlobal(QPointF(x, 14)), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(slider, &move);
    }
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {150, 14});
    EXPECT_EQ(sizes.size(), 5);
    EXPECT_TRUE(std::ranges::is_sorted(sizes));
    EXPECT_EQ(field(u"字号"_s)->text().toDouble(), model.options().fontSize);
    EXPECT_EQ(steps(), before + 1);
    QTest::mouseClick(slider, Qt::LeftButton, {}, {40, 14});
    EXPECT_EQ(steps(), before + 2) << "the next drag is the next step";
}

TEST_F(StyleControlsTest, a_step_taken_back_during_a_drag_stays_taken_back)
{
    enter(u"距底部"_s, u"20"_s);
    auto *const slider = find<Slider>(u"字号滑块"_s);
    QTest::mousePress(slider, Qt::LeftButton, {}, {40, 14});
    model.undo();
    EXPECT_EQ(model.options().fontSize, 48);
    QTest::mouseMove(slider, {200, 14});
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {200, 14});
    model.undo();
    EXPECT_EQ(model.options().fontSize, 48);
    EXPECT_EQ(model.options().bottomPercent, 20);
}

TEST_F(StyleControlsTest, arrow_keys_step_and_the_wheel_scrolls_past)
{
    field(u"距底部"_s)->setFocus();
    press(Qt::Key_Up);
    EXPECT_EQ(model.options().bottomPercent, 10.5);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(model.options().bottomPercent, 5.5);
    find<Slider>(u"距底部滑块"_s)->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(model.options().bottomPercent, 6);

    const Options before = model.options();
    auto *const scroll = window.findChild<QScrollArea *>();
    for (QWidget *const control :
         {static_cast<QWidget *>(find<Slider>(u"字号滑块"_s)), static_cast<QWidget *>(choice(u"帧率"_s)),
          static_cast<QWidget *>(field(u"字号"_s))}) {
        scroll->verticalScrollBar()->setValue(0);
        QWheelEvent wheel(QPointF(5, 5), control->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel); // Others are not handed on to what lies behind.
        qApp->notify(control, &wheel);
        Events::handle();
        EXPECT_EQ(model.options(), before);
        EXPECT_GT(scroll->verticalScrollBar()->value(), 0);
    }
}

TEST_F(StyleControlsTest, undo_takes_back_what_is_typed_and_then_what_was_changed)
{
    for (const auto &[name, typed] : {std::pair(u"字号"_s, u"60"_s), std::pair(u"项目名称"_s, u"Trailer"_s)}) {
        const Options before = model.options();
        enter(name, typed);
        const Options after = model.options();
        press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(model.options(), before) << qPrintable(name);
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(model.options(), after) << qPrintable(name);
        type(name, u"9"_s);
        press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(model.options(), after) << qPrintable(name);
        press(Qt::Key_Escape);
    }
}

TEST_F(StyleControlsTest, pickers_set_the_frame_and_its_rate)
{
    choose(u"帧率"_s, u"23.976 帧/秒"_s);
    EXPECT_EQ(model.options().rate, FrameRate::all()[0]);
    const Options landscape = model.options();
    choose(u"画面尺寸"_s, u"竖屏 1080 × 1920"_s);
    EXPECT_EQ(model.options().width, 1080);
    EXPECT_EQ(model.options().height, 1920);
    EXPECT_DOUBLE_EQ(model.options().fontSize, 48.0 * 1920 / 2160);
    EXPECT_EQ(field(u"字号"_s)->text(), u"42.67"_s);
    field(u"字号"_s)->setFocus();
    press(Qt::Key_Tab);
    EXPECT_DOUBLE_EQ(model.options().fontSize, 48.0 * 1920 / 2160) << "what is shown rounded is not rounded";
    choose(u"画面尺寸"_s, u"UHD 3840 × 2160"_s);
    EXPECT_EQ(model.options(), landscape) << "there and back again";

    EXPECT_EQ(field(u"画面宽度"_s), nullptr);
    choose(u"画面尺寸"_s, u"自定义"_s);
    EXPECT_EQ(model.options(), landscape);
    enter(u"画面宽度"_s, u"2048"_s);
    enter(u"画面高度"_s, u"1080"_s);
    EXPECT_EQ(model.options().width, 2048);
    EXPECT_EQ(model.options().height, 1080);
    EXPECT_EQ(model.options().fontSize, 24);
    enter(u"画面高度"_s, u"0"_s);
    EXPECT_EQ(model.options().height, 1080);
    EXPECT_TRUE(visibleTexts().contains(u"请输入 1 到 16384 之间的整数。"_s));
}

TEST_F(StyleControlsTest, switches_enable_what_they_switch)
{
    EXPECT_FALSE(field(u"描边宽度"_s)->isEnabled());
    click(u"给文字加描边"_s);
    EXPECT_TRUE(model.options().strokeEnabled);
    EXPECT_TRUE(field(u"描边宽度"_s)->isEnabled());
    click(u"给文字加阴影"_s);
    EXPECT_TRUE(model.options().shadowEnabled);
    model.undo();
    EXPECT_FALSE(field(u"阴影模糊"_s)->isEnabled());
    OwnedCues owned(model);
    EXPECT_FALSE(field(u"字号"_s)->isEnabled());
    owned.end();
    EXPECT_TRUE(field(u"字号"_s)->isEnabled());
}

TEST_F(StyleControlsTest, a_color_is_seen_before_it_is_chosen)
{
    const int before = steps();
    for (const bool isChosen : {false, true}) {
        click(u"颜色"_s);
        auto *const dialog = window.findChild<QColorDialog *>();
        ASSERT_NE(dialog, nullptr);
        dialog->setCurrentColor(QColor(255, 0, 0, 128));
        Events::handle();
        EXPECT_EQ(model.options().fontColor, u"1 1 1 1"_s);
        if (isChosen)
            dialog->accept();
        else
            dialog->reject();
        Events::handle();
        EXPECT_EQ(model.options().fontColor, isChosen ? u"1 0 0 0.502"_s : u"1 1 1 1"_s);
        EXPECT_TRUE(Events::waitFor([&] { return !window.findChild<QColorDialog *>(); }));
    }
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(field(u"颜色不透明度"_s)->text(), u"50"_s);
    EXPECT_EQ(field(u"颜色色值"_s)->text(), u"#FF0000"_s);
}

TEST_F(StyleControlsTest, controls_follow_the_model_without_an_echo)
{
    int changes = 0;
    QObject::connect(&model, &LintoraModel::optionsChanged, &model, [&] { ++changes; });
    Options options = model.options();
    options.fontSize = 1'000.125; // beyond the slider, and with more places than are shown
    options.rate = {.label = u"48"_s, .numerator = 48, .denominator = 1};
    options.fontColor = u"white"_s;
    options.font = u"Somewhere Else"_s;
    options.fontFace = u"W9"_s;
    model.setOptions(options);
    Events::handle();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(model.options(), options);
    EXPECT_EQ(field(u"字号"_s)->text(), u"1000.13"_s);
    EXPECT_EQ(choice(u"帧率"_s)->currentText(), u"48 帧/秒"_s);
    EXPECT_EQ(choice(u"字体"_s)->currentText(), u"Somewhere Else"_s);
    EXPECT_EQ(choice(u"字形"_s)->currentText(), u"W9"_s);
    EXPECT_TRUE(visibleTexts().contains(u"颜色“white”无法识别，暂按默认颜色显示。"_s));
    model.selectTrack(model.tracks().last().id);
    EXPECT_EQ(field(u"字号"_s)->text(), u"48"_s);
    model.selectTrack(model.tracks().first().id);
    EXPECT_EQ(model.options(), options);
}

TEST_F(StyleControlsTest, a_dropped_project_is_offered_to_be_matched)
{
    EXPECT_EQ(find<QAbstractButton>(u"匹配项目"_s), nullptr);
    const QByteArray project = R"(<fcpxml version="1.10"><resources>
        <format id="r1" frameDuration="1/25s" width="2048" height="1080"/></resources>
        <library><event><project name="粗剪"><sequence format="r1" duration="10s"><spine>
        <gap duration="10s"/></spine></sequence></project></event></library></fcpxml>)";
    model.load(outside.file(u"a.fcpxml"_s, project));
    settle();
    ASSERT_NE(find<QAbstractButton>(u"匹配项目"_s), nullptr) << qPrintable(model.failure().value_or(QString()));
    const Options matched = model.options();
    EXPECT_EQ(matched.width, 2048);
    EXPECT_FALSE(find<QAbstractButton>(u"匹配项目"_s)->isEnabled());
    EXPECT_TRUE(visibleTexts().contains(matched.name + u" · 2048 × 1080 · 25 帧/秒"_s))
        << qPrintable(visibleTexts().join(u'|'));
    EXPECT_EQ(choice(u"画面尺寸"_s)->currentText(), u"项目自己的尺寸 2048 × 1080"_s);
    choose(u"画面尺寸"_s, u"HD 1920 × 1080"_s);
    choose(u"帧率"_s, u"60 帧/秒"_s);
    choose(u"帧率"_s, u"项目 · 25 帧/秒"_s);
    EXPECT_EQ(model.options().rate, matched.rate);
    click(u"匹配项目"_s);
    EXPECT_EQ(model.options(), matched);
}

TEST_F(StyleControlsTest, the_preview_tells_what_is_to_be_known)
{
    auto *const preview = find<StylePreview>(u"字幕样式预览"_s);
    ASSERT_NE(preview, nullptr);
    Options options = model.options();
    options.font = QFontInfo(QFont()).family();
    options.fontFace = std::nullopt;
    model.setOptions(options);
    const auto remark = [&] {
        Events::handle();
        return preview->remark();
    };
    EXPECT_FALSE(remark().contains(u"换行"_s));
    workspace->showCue(1);
    EXPECT_TRUE(remark().contains(u"此条超出字幕安全区，需要换行"_s));
    enter(u"字号"_s, u"20"_s);
    EXPECT_FALSE(remark().contains(u"换行"_s));
    options.font = u"No Such Font"_s;
    model.setOptions(options);
    EXPECT_TRUE(remark().contains(u"未安装“No Such Font”，预览以“"_s));
}

TEST_F(StyleControlsTest, a_still_stands_behind_the_title_unless_it_is_no_picture)
{
    auto *const preview = find<StylePreview>(u"字幕样式预览"_s);
    QImage picture(64, 36, QImage::Format_RGB32);
    picture.fill(Qt::green);
    ASSERT_TRUE(picture.save(outside.path(u"still.png"_s)));
    outside.file(u"broken.png"_s, "no picture");
    outside.answer = outside.path(u"still.png"_s);
    click(u"背景：画面…"_s);
    EXPECT_TRUE(Events::waitFor([&] { return preview->backdrop().kind == TitleBackdrop::Kind::still; }));
    Events::handle();
    EXPECT_EQ(preview->grab().toImage().pixelColor(preview->rect().center()), QColor(Qt::green));
    outside.answer = outside.path(u"broken.png"_s);
    click(u"背景：画面…"_s);
    const QString refusal = u"“broken.png”不是可用的图片，背景没有更换。"_s;
    EXPECT_TRUE(Events::waitFor([&] { return visibleTexts().contains(refusal); }));
    EXPECT_EQ(preview->backdrop().kind, TitleBackdrop::Kind::still);
    click(u"背景：白"_s);
    EXPECT_EQ(preview->grab().toImage().pixelColor(preview->rect().center()), QColor(Qt::white));
    EXPECT_FALSE(visibleTexts().contains(refusal));
}

TEST_F(StyleControlsTest, everything_is_named_and_reached_by_tab_from_top_to_bottom)
{
    for (const QSize size : {QSize(560, 650), QSize(640, 790), QSize(1200, 900)}) {
        window.resize(size);
        Events::handle();
        QWidget *const first = find<QAbstractButton>(u"背景：黑"_s);
        first->setFocus();
        QStringList reached;
        do {
            reached += QApplication::focusWidget()->accessibleName();
            press(Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && reached.size() < 80);
        EXPECT_FALSE(reached.contains(QString())) << qPrintable(reached.join(u'|'));
        qsizetype last = -1;
        for (const QString &name :
             {u"安全区"_s, u"放大"_s, u"保存预设…"_s, u"字体"_s, u"字形"_s, u"字号滑块"_s, u"字号"_s, u"颜色"_s,
              u"颜色色值"_s, u"距底部"_s, u"给文字加描边"_s, u"给文字加阴影"_s, u"画面尺寸"_s, u"帧率"_s, u"时间偏移"_s,
              u"项目名称"_s, u"字幕角色"_s, u"关闭"_s}) {
            EXPECT_GT(reached.indexOf(name), last) << qPrintable(name) << qPrintable(reached.join(u'|'));
            last = reached.indexOf(name);
        }
    }
}

TEST(TimeShiftText, is_read_as_people_type_it)
{
    const std::pair<QString, std::optional<qint64>> rows[] = {
        {u"0"_s, 0},
        {u"-500"_s, -500},
        {u"+1200 毫秒"_s, 1'200},
        {u"－５００"_s, -500},
        {u"−40ms"_s, -40},
        {u"-00:00:01,500"_s, -1'500},
        {u"1:02.5"_s, 62'500},
        {u"24:00:00,000"_s, TimeShift::longest},
        {u"24:00:00,001"_s, std::nullopt},
        {u"86400001"_s, std::nullopt},
        {u"--5"_s, std::nullopt},
        {u"00:00:01:12"_s, std::nullopt},
        {u""_s, std::nullopt},
        {u"1.5"_s, std::nullopt},
    };
    for (const auto &[text, expected] : rows)
        EXPECT_EQ(TimeShift::parse(text), expected) << qPrintable(text);
}

} // namespace
