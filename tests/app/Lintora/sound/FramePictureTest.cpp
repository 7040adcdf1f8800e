#include "app/Lintora/sound/device/FramePicture.h"

#include <QColor>
#include <QVideoFrame>
#include <QVideoFrameFormat>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using Format = QVideoFrameFormat;

struct Layout
{
    const char *name;
    Format::PixelFormat format;
    std::vector<int> bluePlace; ///< Plane, and bytes from pair to pair, to the first one.
    std::vector<int> redPlace;
    int bytes; ///< Of a value; the high one is the last.
};

/// A frame whose left half is of one colour and whose right half is of another, by BT.709 within the range of video.
QVideoFrame frame(const Layout &layout, QSize size, const QColor &left, const QColor &right)
{
    Format format(size, layout.format);
    format.setColorSpace(Format::ColorSpace_BT709);
    format.setColorRange(Format::ColorRange_Video);
    QVideoFrame result(format);
    EXPECT_TRUE(result.map(QVideoFrame::WriteOnly));
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const QColor &colour = x < size.width() / 2 ? left : right;
            const double luma = 0.2126 * colour.redF() + 0.7152 * colour.greenF() + 0.0722 * colour.blueF();
            const auto put = [&](int plane, int row, int place, double value) {
                result.bits(plane)[row * result.bytesPerLine(plane) + place + layout.bytes - 1] =
                    uchar(std::lround(value));
            };
            put(0, y, x * layout.bytes, 16 + 219 * luma);
            const auto chroma = [&](const std::vector<int> &place, double value) {
                put(place[0], y / 2, x / 2 * place[1] + place[2], 128 + 224 * value);
            };
            chroma(layout.bluePlace, (colour.blueF() - luma) / 1.8556);
            chroma(layout.redPlace, (colour.redF() - luma) / 1.5748);
        }
    }
    result.unmap();
    return result;
}

void expectNear(QRgb found, const QColor &expected)
{
    EXPECT_NEAR(qRed(found), expected.red(), 3);
    EXPECT_NEAR(qGreen(found), expected.green(), 3);
    EXPECT_NEAR(qBlue(found), expected.blue(), 3);
}

class FramePictures : public testing::TestWithParam<Layout>
{};

} // namespace

TEST_P(FramePictures, have_their_frames_colours)
{
    const QColor orange(230, 120, 20);
    const QColor blue(30, 60, 200);
    for (const QSize &size : {QSize(64, 36), QSize(1'920, 1'080)}) {
        const QImage picture = FramePicture::of(frame(GetParam(), size, orange, blue));
        EXPECT_EQ(picture.size(), size.width() == 64 ? size : QSize(640, 360));
        expectNear(picture.pixel(picture.width() / 2 - 2, picture.height() - 1), orange);
        expectNear(picture.pixel(picture.width() / 2 + 2, 0), blue);
    }
}

INSTANTIATE_TEST_SUITE_P(formats, FramePictures,
                         testing::Values(Layout{"YUV420P", Format::Format_YUV420P, {1, 1, 0}, {2, 1, 0}, 1},
                                         Layout{"YV12", Format::Format_YV12, {2, 1, 0}, {1, 1, 0}, 1},
                                         Layout{"NV12", Format::Format_NV12, {1, 2, 0}, {1, 2, 1}, 1},
                                         Layout{"NV21", Format::Format_NV21, {1, 2, 1}, {1, 2, 0}, 1},
                                         Layout{"P010", Format::Format_P010, {1, 4, 0}, {1, 4, 2}, 2}),
                         [](const auto &row) { return row.param.name; });

TEST(FramePicture, of_another_format_is_converted_whole)
{
    const QVideoFrame rgb(Format(QSize(64, 36), Format::Format_BGRX8888));
    EXPECT_EQ(FramePicture::of(rgb).size(), QSize(64, 36));
    EXPECT_TRUE(FramePicture::of(QVideoFrame()).isNull());
}
