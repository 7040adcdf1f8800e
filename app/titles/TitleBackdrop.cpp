#include "app/titles/TitleBackdrop.h"

#include <QPainter>

#include <cstring>

namespace {

/// One row of the ramp, copied into all the others.
void drawGreys(QImage &canvas)
{
    auto *const first = reinterpret_cast<QRgb *>(canvas.scanLine(0));
    const int last = std::max(1, canvas.width() - 1);
    for (int x = 0; x < canvas.width(); ++x) {
        const int level = (x * 255 + last / 2) / last;
        first[x] = qRgb(level, level, level);
    }
    for (int y = 1; y < canvas.height(); ++y)
        std::memcpy(canvas.scanLine(y), first, static_cast<size_t>(canvas.width()) * sizeof(QRgb));
}

QImage filling(const QImage &still, QSize size)
{
    const QImage scaled = still.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QPoint corner((scaled.width() - size.width()) / 2, (scaled.height() - size.height()) / 2);
    return scaled.copy(QRect(corner, size)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

TitleBackdrop TitleBackdrops::fitted(const TitleBackdrop &backdrop, QSize size)
{
    TitleBackdrop result = backdrop;
    if (backdrop.kind == TitleBackdrop::Kind::still && !backdrop.still.isNull() && !size.isEmpty())
        result.still = filling(backdrop.still, size);
    return result;
}

void TitleBackdrops::draw(const TitleBackdrop &backdrop, QImage &canvas)
{
    switch (backdrop.kind) {
    case TitleBackdrop::Kind::transparent:
        canvas.fill(Qt::transparent);
        return;
    case TitleBackdrop::Kind::black:
        canvas.fill(Qt::black);
        return;
    case TitleBackdrop::Kind::white:
        canvas.fill(Qt::white);
        return;
    case TitleBackdrop::Kind::greys:
        drawGreys(canvas);
        return;
    case TitleBackdrop::Kind::still:
        break;
    }
    canvas.fill(Qt::black);
    if (backdrop.still.isNull())
        return;
    QPainter painter(&canvas);
    painter.drawImage(0, 0,
                      backdrop.still.size() == canvas.size() ? backdrop.still : filling(backdrop.still, canvas.size()));
}
