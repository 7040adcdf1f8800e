#include "app/style/TitleLayers.h"

#include "app/style/GaussianBlur.h"
#include "app/style/TitleColor.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

QColor colorOf(const QString &text, const QString &otherwise)
{
    return TitleColor::read(text).value_or(*TitleColor::read(otherwise));
}

QPen strokePen(const QColor &color, double width)
{
    // The inner half lies under the glyphs.
    return {color, width * 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void paintSilhouette(QPainter &painter, const QPainterPath &glyphs, double stroke, const QColor &color)
{
    painter.fillPath(glyphs, color);
    if (stroke > 0)
        painter.strokePath(glyphs, strokePen(color, stroke));
}

/// The coverage of the shadow in the pixels of `area`, from 0 to 255.
std::vector<float> shadowCoverage(const QPainterPath &glyphs, const TitlePicture::Layout &layout, QRect area)
{
    QImage mask(area.size(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(layout.shadow - QPointF(area.topLeft()));
        paintSilhouette(painter, glyphs, layout.stroke, Qt::black);
    }
    std::vector<float> coverage(static_cast<size_t>(area.width()) * static_cast<size_t>(area.height()));
    auto at = coverage.begin();
    for (int y = 0; y < area.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
        at = std::transform(row, row + area.width(), at, [](QRgb pixel) { return static_cast<float>(qAlpha(pixel)); });
    }
    GaussianBlur::apply(coverage, area.width(), area.height(), layout.sigma);
    return coverage;
}

void drawShadow(QPainter &painter, const QPainterPath &glyphs, const TitlePicture::Layout &layout, const QColor &color)
{
    // What stands farther out than the blur reaches leaves no trace in the picture.
    const int reach = GaussianBlur::reach(layout.sigma);
    const QRect area =
        layout.bounds.toAlignedRect() & QRect(QPoint(), layout.size).adjusted(-reach, -reach, reach, reach);
    if (area.isEmpty())
        return;
    const std::vector<float> coverage = shadowCoverage(glyphs, layout, area);
    QImage shadow(area.size(), QImage::Format_ARGB32_Premultiplied);
    auto at = coverage.begin();
    std::array<QRgb, 256> shades{};
    for (int alpha = 0; alpha < 256; ++alpha) {
        const float part = color.alphaF() * static_cast<float>(alpha) / 255.0F;
        shades[static_cast<size_t>(alpha)] =
            qPremultiply(qRgba(color.red(), color.green(), color.blue(), static_cast<int>(std::lround(part * 255))));
    }
    for (int y = 0; y < area.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(shadow.scanLine(y));
        std::transform(at, at + area.width(), row, [&](float value) {
            return shades[static_cast<size_t>(std::clamp(static_cast<int>(value + 0.5F), 0, 255))];
        });
        at += area.width();
    }
    painter.drawImage(area.topLeft(), shadow);
}

/// The outline alone, the glyphs cut out of it: seen through letters that are not opaque, it would tint them.
void drawHollowStroke(QPainter &painter, const QPainterPath &glyphs, const TitlePicture::Layout &layout,
                      const QColor &color)
{
    const QRect area = layout.bounds.toAlignedRect() & QRect(QPoint(), layout.size);
    if (area.isEmpty())
        return;
    QImage layer(area.size(), QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    {
        QPainter inner(&layer);
        inner.setRenderHint(QPainter::Antialiasing);
        inner.translate(-QPointF(area.topLeft()));
        inner.strokePath(glyphs, strokePen(color, layout.stroke));
        inner.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        inner.fillPath(glyphs, Qt::black);
    }
    painter.drawImage(area.topLeft(), layer);
}

} // namespace

QPainterPath TitleLayers::outline(const QString &line, const QFont &font)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addText(QPointF(), font, line);
    return path;
}

void TitleLayers::draw(QImage &canvas, const QPainterPath &glyphs, const TitlePicture::Layout &layout,
                       const Options &options)
{
    if (layout.ink.isEmpty())
        return;
    const Options first;
    const QColor fill = colorOf(options.fontColor, first.fontColor);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing);
    if (options.shadowEnabled)
        drawShadow(painter, glyphs, layout, colorOf(options.shadowColor, first.shadowColor));
    if (layout.stroke > 0) {
        const QColor stroke = colorOf(options.strokeColor, first.strokeColor);
        if (fill.alpha() == 255)
            painter.strokePath(glyphs, strokePen(stroke, layout.stroke));
        else
            drawHollowStroke(painter, glyphs, layout, stroke);
    }
    painter.fillPath(glyphs, fill);
}
