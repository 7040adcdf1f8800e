#include "app/Lintora/drag/DragSubtitleCard.h"
#include "app/Lintora/drag/FileDropArea.h"
#include "app/Lintora/drag/UnifiedImportArea.h"
#include "app/model/FCPPasteboard.h"

#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/OwnedCues.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class DragAndDrop : public testing::Test
{
protected:
    /// What the area makes of material that is brought over it: whether it would take it.
    static bool hovers(QWidget &area, const QMimeData &material)
    {
        QDragEnterEvent enter(area.rect().center(), Qt::CopyAction | Qt::MoveAction, &material, Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(&area, &enter);
        return enter.isAccepted() && enter.dropAction() == Qt::CopyAction;
    }

    static bool drops(QWidget &area, const QMimeData &material)
    {
        if (!hovers(area, material))
            return false;
        QDropEvent drop(area.rect().center(), Qt::CopyAction, &material, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&area, &drop);
        return drop.isAccepted();
    }

    static std::unique_ptr<QMimeData> files(const QList<QUrl> &urls)
    {
        auto material = std::make_unique<QMimeData>();
        material->setUrls(urls);
        return material;
    }

    void load(int cues)
    {
        m_model.load(m_outside.srt(u"a.srt"_s, cues));
        ASSERT_TRUE(Events::waitFor([&] { return m_model.items().size() == cues; }));
    }

    /// A press, and a move that is far enough to be a drag.
    static void pull(QWidget &card)
    {
        QTest::mousePress(&card, Qt::LeftButton, Qt::NoModifier, QPoint(20, 10));
        for (const int x : {25, 60, 100}) {
            QMouseEvent move(QEvent::MouseMove, QPointF(x, 10), card.mapToGlobal(QPointF(x, 10)), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&card, &move);
        }
    }

    TemporaryModel m_outside;
    LintoraModel m_model{m_outside.surroundings()};
};

TEST_F(DragAndDrop, areas_take_files_and_documents_and_nothing_else)
{
    UnifiedImportArea area(m_model);
    EXPECT_TRUE(hovers(area, *files({QUrl::fromLocalFile(u"/a.srt"_s)})));
    EXPECT_FALSE(hovers(area, *files({QUrl(u"https://example.org/a.srt"_s)})));
    QMimeData text;
    text.setText(u"/a.srt"_s);
    EXPECT_FALSE(hovers(area, text));
    for (const QString &type : FCPPasteboard::fcpTypes()) {
        QMimeData document;
        document.setData(type, "<fcpxml/>");
        EXPECT_TRUE(hovers(area, document)) << type.toStdString();
    }
    m_model.window().subtitleDragInProgress = true;
    EXPECT_FALSE(hovers(area, *FCPPasteboard::offering("<fcpxml/>"))) << "a card of our own";
}

TEST_F(DragAndDrop, a_dropped_file_is_loaded)
{
    for (const bool unified : {true, false}) {
        UnifiedImportArea large(m_model);
        FileDropArea small(m_model, FileDropArea::Form::compact);
        QWidget &area = unified ? static_cast<QWidget &>(large) : small;
        const int cues = unified ? 3 : 4;
        EXPECT_TRUE(drops(area, *files({m_outside.srt(u"字 幕.srt"_s, cues)})));
        EXPECT_TRUE(Events::waitFor([&] { return m_model.items().size() == cues; }));
    }
}

TEST_F(DragAndDrop, what_the_model_does_not_take_is_refused_in_its_words)
{
    UnifiedImportArea area(m_model);
    EXPECT_FALSE(drops(area, *files({m_outside.srt(u"a.srt"_s, 1), m_outside.srt(u"b.srt"_s, 1)})));
    EXPECT_TRUE(m_model.failure().has_value());
    OwnedCues owned(m_model);
    EXPECT_FALSE(drops(area, *files({m_outside.srt(u"a.srt"_s, 1)})));
    EXPECT_EQ(m_model.failure(), u"任务处理中，请先取消再导入"_s);
    owned.end();
    EXPECT_TRUE(m_model.items().isEmpty());
}

TEST_F(DragAndDrop, an_area_says_what_letting_go_would_do)
{
    FileDropArea area(m_model, FileDropArea::Form::large);
    const auto material = files({QUrl::fromLocalFile(u"/a.srt"_s)});
    hovers(area, *material);
    EXPECT_EQ(area.text(), u"松开以导入"_s);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&area, &leave);
    EXPECT_EQ(area.text(), u"拖入 FCP 项目、SRT 或音视频"_s);
}

/// Contrast of two colours as accessibility guidelines define it, from 1 to 21.
double contrast(const QColor &a, const QColor &b)
{
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST_F(DragAndDrop, texts_are_easy_to_read_in_light_and_dark)
{
    UnifiedImportArea area(m_model);
    for (const auto &[ground, text] : {std::pair(0xffffff, 0x000000), std::pair(0x1e1e1e, 0xdddddd)}) {
        QPalette colours;
        colours.setColor(QPalette::Base, QColor::fromRgb(QRgb(ground)));
        colours.setColor(QPalette::Text, QColor::fromRgb(QRgb(text)));
        area.setPalette(colours);
        for (const QLabel *const label : area.findChildren<QLabel *>())
            EXPECT_GE(contrast(label->palette().color(label->foregroundRole()), QColor::fromRgb(QRgb(ground))), 4.5);
    }
}

TEST_F(DragAndDrop, a_click_and_the_keys_of_a_button_open_the_file_dialog)
{
    UnifiedImportArea area(m_model);
    area.show();
    QTest::mouseClick(&area, Qt::LeftButton);
    QTest::keyClick(&area, Qt::Key_Space);
    QTest::keyClick(&area, Qt::Key_Return);
    EXPECT_EQ(m_outside.openings, QStringList(3, u"导入字幕、音视频或 FCP 项目"_s));
}

TEST_F(DragAndDrop, the_import_area_shrinks_to_a_line)
{
    UnifiedImportArea area(m_model);
    const int before = area.sizeHint().height();
    area.setForm(UnifiedImportArea::Form::oneLine);
    EXPECT_LT(area.sizeHint().height(), before / 3);
    area.setForm(UnifiedImportArea::Form::large);
    EXPECT_EQ(area.sizeHint().height(), before);
}

TEST_F(DragAndDrop, a_card_bears_the_label_of_its_track)
{
    DragSubtitleCard card(m_model, std::nullopt);
    load(2);
    const QString label = m_model.tracks().first().label;
    EXPECT_EQ(card.caption(), u"↗  拖回 FCP 时间线    ·    "_s + label);
    const int room = card.fontMetrics().horizontalAdvance(card.caption());
    EXPECT_EQ(card.shownCaption(room), card.caption());
    EXPECT_EQ(card.shownCaption(room - 1), u"↗  拖回 FCP · "_s + label);
    EXPECT_EQ(card.shownCaption(room / 3), u"↗  "_s + label);
}

TEST_F(DragAndDrop, a_card_that_is_let_go_elsewhere_says_so_and_calls_the_window_back)
{
    load(2);
    int raised = 0;
    m_model.window().raisePinnedWindow = [&] {
        EXPECT_FALSE(m_model.window().subtitleDragInProgress);
        ++raised;
    };
    DragSubtitleCard card(m_model, std::nullopt);
    card.show();
    const LoggedLines logged;
    pull(card); // off the screen nothing takes a drag
    EXPECT_TRUE(logged.lines.contains(u"SubtitleDrag: Subtitle drag window stayed still: true"_s));
    EXPECT_EQ(raised, 0) << "the drag has not returned to the event loop";
    EXPECT_EQ(m_model.message(), u"未放入时间线，请把字幕卡片拖到 FCP 时间线区域"_s);
    EXPECT_FALSE(m_model.window().subtitleDragInProgress);
    Events::handle();
    EXPECT_EQ(raised, 1) << "one press is one drag";
}

TEST_F(DragAndDrop, a_call_for_the_window_is_dropped_with_the_model)
{
    auto model = std::make_unique<LintoraModel>(m_outside.surroundings());
    model->load(m_outside.srt(u"a.srt"_s, 1));
    ASSERT_TRUE(Events::waitFor([&] { return model->items().size() == 1; }));
    model->window().raisePinnedWindow = [] { FAIL(); };
    {
        DragSubtitleCard card(*model, std::nullopt);
        card.show();
        pull(card);
    }
    model.reset();
    Events::handle();
}

TEST_F(DragAndDrop, a_card_of_a_closed_track_starts_no_drag)
{
    load(2);
    DragSubtitleCard card(m_model, m_model.tracks().first().id);
    card.show();
    m_model.load(m_outside.srt(u"b.srt"_s, 3));
    ASSERT_TRUE(Events::waitFor([&] { return m_model.items().size() == 3; }));
    const QString message = m_model.message();
    pull(card);
    EXPECT_EQ(m_model.failure(), u"该语言组已关闭，请重新拖动字幕卡片"_s);
    EXPECT_EQ(m_model.message(), message);
    EXPECT_FALSE(m_model.window().subtitleDragInProgress);
}

TEST_F(DragAndDrop, a_small_movement_is_no_drag)
{
    load(1);
    const QString message = m_model.message();
    DragSubtitleCard card(m_model, std::nullopt);
    card.show();
    QTest::mousePress(&card, Qt::LeftButton, Qt::NoModifier, QPoint(20, 10));
    QMouseEvent move(QEvent::MouseMove, QPointF(22, 11), card.mapToGlobal(QPointF(22, 11)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&card, &move);
    EXPECT_EQ(m_model.message(), message);
}

TEST_F(DragAndDrop, a_card_can_be_copied_by_the_keyboard_under_every_type)
{
    load(2);
    DragSubtitleCard card(m_model, std::nullopt);
    card.show();
    QTest::keyClick(&card, Qt::Key_Return);
    auto *const menu = card.findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions().first()->text(), u"复制到剪贴板"_s);
    menu->actions().first()->trigger();
    const QMimeData *const copied = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->formats(), FCPPasteboard::fcpTypes());
    const std::optional<QByteArray> document = m_model.payload(std::nullopt);
    ASSERT_TRUE(document.has_value());
    for (const QString &type : FCPPasteboard::fcpTypes())
        EXPECT_EQ(copied->data(type), *document);
}

TEST_F(DragAndDrop, what_follows_the_pointer_is_a_rounded_card)
{
    load(2);
    DragSubtitleCard card(m_model, std::nullopt);
    card.resize(300, 36);
    const QImage image = card.dragImage().toImage();
    EXPECT_EQ(image.deviceIndependentSize(), QSizeF(300, 36));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(image.pixelColor(150, 2), card.palette().color(QPalette::Base));
    bool hasText = false;
    for (int x = 0; x < 300; ++x)
        hasText = hasText || image.pixelColor(x, 18).lightness() < 128;
    EXPECT_TRUE(hasText);
}

} // namespace
