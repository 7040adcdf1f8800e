#pragma once

#include "fcp/Options.h"

#include <QList>
#include <QSize>

/// The frame sizes that are offered, and what a change of size does to a style.
namespace FrameSizes {

struct Choice
{
    QString caption;
    QSize size;
};

/// In the order of the picker.
const QList<Choice> &choices();

QString write(qint64 width, qint64 height); ///< "1920 × 1080"

/// `options` in a frame of that size. The font size changes with the height, so that titles look as large as before; as
/// when a preset is applied, what is measured in pixels stays.
Options resized(Options options, qint64 width, qint64 height);

} // namespace FrameSizes
