#pragma once

#include <QImage>
#include <QString>

#include <gtest/gtest.h>

/// Pictures compared with pictures that someone has looked at.
namespace ReferenceImage {

/// Whether `received` looks like the PNG at `path`: the same size, and no more than one pixel in a thousand off by more
/// than 12 of 255 in some channel. Otherwise `received` is left beside it, as NAME.received.png.
::testing::AssertionResult matches(const QImage &received, const QString &path);

} // namespace ReferenceImage
