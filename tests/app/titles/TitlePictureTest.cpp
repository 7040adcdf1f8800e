#include "app/titles/TitlePicture.h"

#include "app/titles/TitleMeasure.h"

#include <QFontDatabase>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString family = u"Noto Sans CJK SC"_s;

class TitlePictureTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!QFontDatabase::hasFamily(family))
            GTEST_SKIP() << "needs the font " << family.toStdString() << " (package fonts-noto-cjk)";
    }

    static Options style(qint64 width = 1920, qint64 height = 1080, double fontSize = 60)
    {
        Options options;
        options.font = family;
        options.width = width;
        options.height = height;
        options.fontSize = fontSize;
        return options;
    }
};

TitleBackdrop on(TitleBackdrop::Kind kind)
{
    return {.kind = kind};
}

/// The smallest rectangle that holds every pixel that is not fully transparent.
QRect painted(const QImage &picture)
{
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) > 0)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

QRect paintedWith(const Options &options)
{
    return painted(TitlePicture::draw(u"口"_s, options, QSize(1920, 1080), on(TitleBackdrop::Kind::transparent)));
}

} // namespace

TEST_F(TitlePictureTest, fits_every_frame_into_the_size_it_is_given)
{
    EXPECT_EQ(TitlePicture::fittedSize(style(3840, 2160), {560, 315}), QSize(560, 315));
    EXPECT_EQ(TitlePicture::fittedSize(style(1080, 1920), {560, 315}), QSize(177, 315));
    EXPECT_EQ(TitlePicture::fittedSize(style(1080, 1080), {560, 315}), QSize(315, 315));
    EXPECT_EQ(TitlePicture::fittedSize(style(100'000, 1), {560, 315}), QSize(560, 1));
    EXPECT_TRUE(TitlePicture::fittedSize(style(0, 1080), {560, 315}).isEmpty());
    EXPECT_TRUE(TitlePicture::draw(u"好"_s, style(), {}, {}).isNull());
}

TEST_F(TitlePictureTest, puts_the_last_baseline_at_the_stated_percentage)
{
    for (const double percent : {0.0, 10.0, 12.5, 40.0}) {
        Options options = style();
        options.bottomPercent = percent;
        const TitlePicture::Layout one = TitlePicture::layout(u"好"_s, options, {1920, 1080});
        EXPECT_DOUBLE_EQ(one.lines.last().baseline, 1080 * (1 - percent / 100)) << percent;
        const TitlePicture::Layout two = TitlePicture::layout(u"大家\n好"_s, options, {1920, 1080});
        EXPECT_DOUBLE_EQ(two.lines.last().baseline, one.lines.last().baseline);
        EXPECT_GT(two.lines[1].baseline - two.lines[0].baseline, 60) << "lines do not touch";
    }
}

TEST_F(TitlePictureTest, centres_every_line)
{
    const TitlePicture::Layout layout = TitlePicture::layout(u"大家好\n嗯"_s, style(), {1920, 1080});
    ASSERT_EQ(layout.lines.size(), 2);
    for (const TitlePicture::Line &line : layout.lines)
        EXPECT_NEAR(line.left + line.width / 2, 960, 1e-9);
    EXPECT_DOUBLE_EQ(layout.lines[0].width, 180);
    EXPECT_DOUBLE_EQ(layout.lines[1].width, 60);
}

TEST_F(TitlePictureTest, scales_with_the_height_of_the_frame)
{
    const TitlePicture::Layout large = TitlePicture::layout(u"大家好"_s, style(3840, 2160, 48), {560, 315});
    const TitlePicture::Layout small = TitlePicture::layout(u"大家好"_s, style(1920, 1080, 24), {560, 315});
    EXPECT_DOUBLE_EQ(large.em, 315.0 / 45);
    EXPECT_NEAR(large.ink.width(), small.ink.width(), 1e-6);
    EXPECT_NEAR(large.lines[0].baseline, small.lines[0].baseline, 1e-6);
    const TitlePicture::Layout full = TitlePicture::layout(u"大家好"_s, style(3840, 2160, 48), {3840, 2160});
    EXPECT_NEAR(full.ink.width() / large.ink.width(), 3840.0 / 560, 1e-6);
}

TEST_F(TitlePictureTest, draws_the_ink_where_the_layout_says)
{
    const TitlePicture::Layout layout = TitlePicture::layout(u"口"_s, style(), {1920, 1080});
    const QRect area = paintedWith(style());
    EXPECT_LE(std::abs(area.left() - layout.ink.left()), 1);
    EXPECT_LE(std::abs(area.right() + 1 - layout.ink.right()), 1);
    EXPECT_LE(std::abs(area.top() - layout.ink.top()), 1);
    EXPECT_LE(std::abs(area.bottom() + 1 - layout.ink.bottom()), 1);
}

TEST_F(TitlePictureTest, draws_the_stroke_outside_the_glyphs)
{
    Options options = style();
    const QRect plain = paintedWith(options);
    options.strokeWidth = 6;
    EXPECT_EQ(paintedWith(options), plain) << "not enabled";
    options.strokeEnabled = true;
    EXPECT_EQ(paintedWith(options), plain.adjusted(-6, -6, 6, 6));
    options.fontColor = u"1 1 1 0.5"_s;
    EXPECT_EQ(paintedWith(options), plain.adjusted(-6, -6, 6, 6));
    const QPoint onGlyph(plain.left() + 3, plain.center().y());
    const QImage picture = TitlePicture::draw(u"口"_s, options, {1920, 1080}, on(TitleBackdrop::Kind::transparent));
    EXPECT_NEAR(qAlpha(picture.pixel(onGlyph)), 128, 2) << "no stroke shows through the letter";
}

TEST_F(TitlePictureTest, drops_the_shadow_to_the_lower_right)
{
    Options options = style();
    const QRect plain = paintedWith(options);
    options.shadowEnabled = true;
    options.shadowColor = u"0 0 0 1"_s;
    options.shadowBlur = 0;
    EXPECT_EQ(paintedWith(options), plain.adjusted(0, 0, 2, 2));
    options.shadowBlur = 8;
    const QRect blurred = paintedWith(options);
    EXPECT_GT(blurred.right(), plain.right() + 6);
    EXPECT_EQ(blurred.right() - plain.right() - 2, plain.left() - blurred.left() + 2) << "as far on either side";
    const QRectF bounds = TitlePicture::layout(u"口"_s, options, {1920, 1080}).bounds;
    EXPECT_TRUE(bounds.toAlignedRect().contains(blurred));
}

TEST_F(TitlePictureTest, shows_the_breaks_that_a_wide_text_would_need_and_says_so)
{
    const QString text(40, u'好');
    const TitlePicture::Layout layout = TitlePicture::layout(text, style(), {1920, 1080});
    EXPECT_TRUE(layout.wrapsBeyondSafeWidth);
    ASSERT_EQ(layout.lines.size(), 2);
    EXPECT_EQ(layout.lines[0].text.size(), 20) << "in two equal lines";
    EXPECT_EQ(layout.lines[0].text + layout.lines[1].text, text);
    EXPECT_FALSE(TitlePicture::layout(text.first(28), style(), {1920, 1080}).wrapsBeyondSafeWidth)
        << "28 × 60 is 1680, of 1728";
    EXPECT_TRUE(TitlePicture::layout(text.first(17), style(1080, 1920), {1920, 1080}).wrapsBeyondSafeWidth)
        << "17 × 60 is 1020, of 972 in portrait";
}

TEST_F(TitlePictureTest, trims_the_text_as_a_title_document_does)
{
    const TitlePicture::Layout layout = TitlePicture::layout(u"\n 大家好 \n"_s, style(), {1920, 1080});
    ASSERT_EQ(layout.lines.size(), 1);
    EXPECT_EQ(layout.lines[0].text, u"大家好");
    EXPECT_TRUE(TitlePicture::layout(u" \n "_s, style(), {1920, 1080}).lines.isEmpty());
}

TEST_F(TitlePictureTest, draws_options_that_an_editor_holds_on_the_way)
{
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    Options options = style();
    options.strokeEnabled = options.shadowEnabled = true;
    options.shadowBlur = options.strokeWidth = options.bottomPercent = nothing;
    options.fontColor = u"red"_s;
    EXPECT_FALSE(paintedWith(options).isEmpty());
    for (const double size : {0.0, -3.0, nothing}) {
        options.fontSize = size;
        EXPECT_TRUE(paintedWith(options).isEmpty()) << size;
    }
    options.fontSize = 10'000;
    options.shadowBlur = 30;
    EXPECT_FALSE(paintedWith(options).isEmpty());
}

TEST_F(TitlePictureTest, keeps_a_canvas_of_the_right_size)
{
    TitleMeasure measure(style());
    QImage canvas;
    TitlePicture::drawInto(canvas, u"一"_s, style(), {560, 315}, on(TitleBackdrop::Kind::white),
                           TitlePicture::Guides::none, measure);
    const uchar *const memory = canvas.constBits();
    TitlePicture::drawInto(canvas, u"二"_s, style(), {560, 315}, on(TitleBackdrop::Kind::white),
                           TitlePicture::Guides::none, measure);
    EXPECT_EQ(canvas.constBits(), memory);
    EXPECT_EQ(canvas, TitlePicture::draw(u"二"_s, style(), {560, 315}, on(TitleBackdrop::Kind::white)));
}

TEST_F(TitlePictureTest, fills_the_frame_with_the_middle_of_a_still)
{
    QImage still(400, 100, QImage::Format_RGB32);
    still.fill(Qt::red);
    for (int x = 100; x < 300; ++x) {
        for (int y = 0; y < 100; ++y)
            still.setPixelColor(x, y, Qt::blue);
    }
    const TitleBackdrop backdrop{.kind = TitleBackdrop::Kind::still, .still = still};
    const QImage picture = TitlePicture::draw({}, style(), {560, 315}, backdrop);
    EXPECT_EQ(picture.pixelColor(4, 4), QColor(Qt::blue));
    EXPECT_EQ(picture.pixelColor(555, 310), QColor(Qt::blue));
    EXPECT_EQ(TitlePicture::draw({}, style(), {560, 315}, TitleBackdrops::fitted(backdrop, {560, 315})), picture);
}

TEST_F(TitlePictureTest, coloured_signs_are_seen_and_leave_the_fonts_as_they_were)
{
    if (!QFontDatabase::hasFamily(u"Noto Color Emoji"_s))
        GTEST_SKIP() << "needs the font Noto Color Emoji (package fonts-noto-color-emoji)";
    QFont list;
    list.setPixelSize(13);
    const QString signs = u"🎬🇨🇳"_s;
    const double before = QFontMetricsF(list).horizontalAdvance(signs);
    Options options = style();
    options.shadowEnabled = false;
    const QSize size(1920, 1080);
    const QImage picture = TitlePicture::draw(signs, options, size, on(TitleBackdrop::Kind::transparent));
    const QRect seen = painted(picture);
    const TitlePicture::Layout layout = TitlePicture::layout(signs, options, size);
    EXPECT_NEAR(seen.width(), layout.lines.first().width, layout.em / 4);
    EXPECT_TRUE(layout.ink.toAlignedRect().adjusted(-1, -1, 1, 1).contains(seen));
    EXPECT_LT(seen.bottom(), layout.lines.first().baseline + layout.em / 3) << "on the baseline";
    int reds = 0; // the flag
    for (int x = seen.left(); x <= seen.right(); ++x) {
        const QColor pixel = picture.pixelColor(x, seen.center().y());
        reds += pixel.red() > 150 && pixel.green() < 80 ? 1 : 0;
    }
    EXPECT_GT(reds, layout.em / 2);
    EXPECT_EQ(QFontMetricsF(list).horizontalAdvance(signs), before);
}
