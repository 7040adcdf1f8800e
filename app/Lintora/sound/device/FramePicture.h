#pragma once

#include <QImage>

class QVideoFrame;

/// Pictures of video frames for a small preview.
namespace FramePicture {

constexpr int widest = 640; ///< Pixels: a picture is at least so wide, if its frame is.

/// The frame as a picture, less than twice `widest` wide. Frames as decoders make them take about a millisecond,
/// whatever their size; others are converted whole. Null when the frame cannot be read.
QImage of(const QVideoFrame &frame);

} // namespace FramePicture
