#include "app/Lintora/sound/device/FramePicture.h"

#include <QScopeGuard>
#include <QVideoFrame>
#include <QVideoFrameFormat>

#include <algorithm>
#include <optional>

namespace FramePicture {

namespace {

using Format = QVideoFrameFormat;

/// How a format lays out brightness and the two colour differences, of which each is for two pixels of two rows. Bytes.
struct Planes
{
    int lumaStep = 1; ///< From pixel to pixel.
    int chromaStep = 1;
    int blueShift = 0; ///< Of the first value of the blue difference within its plane; the red one's ...
    int redShift = 0;
    int bluePlane = 1;
    int redPlane = 2;
    int highByte = 0; ///< Where the high byte of a value lies.
};

std::optional<Planes> planesOf(Format::PixelFormat format)
{
    switch (format) {
    case Format::Format_YUV420P:
        return Planes();
    case Format::Format_YV12:
        return Planes{.bluePlane = 2, .redPlane = 1};
    case Format::Format_NV12:
        return Planes{.chromaStep = 2, .redShift = 1, .redPlane = 1};
    case Format::Format_NV21:
        return Planes{.chromaStep = 2, .blueShift = 1, .redPlane = 1};
    case Format::Format_P010:
    case Format::Format_P016:
        return Planes{.lumaStep = 2, .chromaStep = 4, .redShift = 2, .redPlane = 1, .highByte = 1};
    default:
        return std::nullopt;
    }
}

/// From brightness and differences to colours, in 1/256.
struct Matrix
{
    int black = 16;
    int luma = 298;
    int redOfRed;
    int greenOfBlue;
    int greenOfRed;
    int blueOfBlue;
};

Matrix matrixOf(const Format &format)
{
    constexpr int lowestHigh = 720; // lines from which high definition begins, where a file does not say
    const bool isUnknown = format.colorSpace() == Format::ColorSpace_Undefined;
    const bool isStandard =
        isUnknown ? format.frameHeight() < lowestHigh : format.colorSpace() == Format::ColorSpace_BT601;
    if (format.colorRange() == Format::ColorRange_Full)
        return isStandard ? Matrix{0, 256, 359, -88, -183, 454} : Matrix{0, 256, 403, -48, -120, 475};
    return isStandard ? Matrix{16, 298, 409, -100, -208, 516} : Matrix{16, 298, 459, -55, -136, 541};
}

QRgb colour(const Matrix &matrix, int luma, int blue, int red)
{
    const int y = (luma - matrix.black) * matrix.luma + 128;
    blue -= 128;
    red -= 128;
    const auto part = [](int value) { return std::clamp(value >> 8, 0, 255); };
    return qRgb(part(y + matrix.redOfRed * red), part(y + matrix.greenOfBlue * blue + matrix.greenOfRed * red),
                part(y + matrix.blueOfBlue * blue));
}

/// Every so many pixels of a mapped frame.
QImage sampled(const QVideoFrame &frame, const Planes &planes, int every)
{
    const Matrix matrix = matrixOf(frame.surfaceFormat());
    QImage picture(frame.width() / every, frame.height() / every, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        const int row = y * every + every / 2;
        const int chromaRow = row / 2;
        const uchar *const luma = frame.bits(0) + row * frame.bytesPerLine(0) + planes.highByte;
        const uchar *const blue = frame.bits(planes.bluePlane) + chromaRow * frame.bytesPerLine(planes.bluePlane) +
                                  planes.blueShift + planes.highByte;
        const uchar *const red = frame.bits(planes.redPlane) + chromaRow * frame.bytesPerLine(planes.redPlane) +
                                 planes.redShift + planes.highByte;
        auto *const line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const int column = x * every + every / 2;
            const int pair = column / 2 * planes.chromaStep;
            line[x] = colour(matrix, luma[column * planes.lumaStep], blue[pair], red[pair]);
        }
    }
    return picture;
}

} // namespace

QImage of(const QVideoFrame &frame)
{
    const auto planes = planesOf(frame.pixelFormat());
    const bool isPlain = frame.handleType() == QVideoFrame::NoHandle && !frame.mirrored() &&
                         frame.rotationAngle() == QVideoFrame::Rotation0;
    QVideoFrame mapped = frame;
    if (!planes || !isPlain || !mapped.map(QVideoFrame::ReadOnly))
        return frame.toImage();
    const auto unmapping = qScopeGuard([&] { mapped.unmap(); });
    return sampled(mapped, *planes, std::max(1, frame.width() / widest));
}

} // namespace FramePicture
