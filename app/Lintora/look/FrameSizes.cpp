#include "app/Lintora/look/FrameSizes.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace FrameSizes {

const QList<Choice> &choices()
{
    static const QList<Choice> all{
        {u"UHD 3840 × 2160"_s, {3840, 2160}},  {u"HD 1920 × 1080"_s, {1920, 1080}},
        {u"竖屏 1080 × 1920"_s, {1080, 1920}}, {u"方形 1080 × 1080"_s, {1080, 1080}},
        {u"4:5 1080 × 1350"_s, {1080, 1350}},
    };
    return all;
}

QString write(qint64 width, qint64 height)
{
    return u"%1 × %2"_s.arg(QString::number(width), QString::number(height));
}

Options resized(Options options, qint64 width, qint64 height)
{
    if (options.height > 0 && height > 0 && height != options.height) {
        const double size = options.fontSize * double(height) / double(options.height);
        // There and back again is where it was.
        const double round = std::round(size * 100) / 100;
        options.fontSize = std::abs(size - round) < 1e-9 ? round : size;
    }
    options.width = width;
    options.height = height;
    return options;
}

} // namespace FrameSizes
