#include "app/titles/TitlePicture.h"

#include "app/titles/GaussianBlur.h"
#include "app/titles/TitleFrame.h"
#include "app/titles/TitleLayers.h"
#include "app/titles/TitleMeasure.h"
#include "app/titles/TitleWrapping.h"
#include "core/text/Characters.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/// A layout and what of its text is drawn.
struct Composition
{
    TitlePicture::Layout layout;
    TitleLayers::Glyphs glyphs;
};

QRectF centred(QSize size, double part)
{
    const double width = size.width() * part;
    const double height = size.height() * part;
    return {(size.width() - width) / 2, (size.height() - height) / 2, width, height};
}

double withinLimits(double value, double highest)
{
    return std::isfinite(value) ? std::clamp(value, 0.0, highest) : 0.0;
}

/// All of the layout that does not depend on the text.
TitlePicture::Layout emptyLayout(const Options &options, QSize size, const TitleMeasure &measure)
{
    TitlePicture::Layout layout;
    layout.size = TitlePicture::fittedSize(options, size);
    if (layout.size.isEmpty())
        return layout;
    layout.scale = static_cast<double>(layout.size.height()) / static_cast<double>(options.height);
    layout.em = TitleFrame::emOf(options) * layout.scale;
    layout.safeArea = centred(layout.size, TitleFrame::titleSafe);
    layout.family = measure.font().family;
    layout.isSubstitute = measure.font().isSubstitute;
    if (options.strokeEnabled)
        layout.stroke = withinLimits(options.strokeWidth, 20) * layout.scale;
    if (options.shadowEnabled) {
        // A document writes "2 -2": two pixels to the right, and down, for its y points upwards.
        layout.shadow = QPointF(2, 2) * layout.scale;
        layout.sigma = withinLimits(options.shadowBlur, 30) / 2 * layout.scale;
    }
    return layout;
}

QRectF boundsOf(const TitlePicture::Layout &layout, const Options &options)
{
    if (layout.ink.isEmpty())
        return {};
    const QRectF outlined = layout.ink.adjusted(-layout.stroke, -layout.stroke, layout.stroke, layout.stroke);
    if (!options.shadowEnabled)
        return outlined;
    const double reach = GaussianBlur::reach(layout.sigma);
    return outlined.united(outlined.translated(layout.shadow).adjusted(-reach, -reach, reach, reach));
}

Composition compose(const QString &text, const Options &options, QSize size, TitleMeasure &measure)
{
    Composition result{.layout = emptyLayout(options, size, measure), .glyphs = {}};
    TitlePicture::Layout &layout = result.layout;
    const QStringView trimmed = Characters::trimmed(text);
    if (layout.size.isEmpty() || layout.em <= 0 || trimmed.isEmpty())
        return result;

    layout.wrapsBeyondSafeWidth = measure.isWiderThanSafe(trimmed);
    const QList<TitleWrapping::Line> lines = TitleWrapping::wrapBalanced(
        trimmed, measure.safeWidth(), [&](QStringView piece) { return measure.widthOf(piece); });
    const double bottom = withinLimits(options.bottomPercent, 100) / 100;
    double baseline = layout.size.height() * (1 - bottom) -
                      measure.lineSpacing() * layout.scale * static_cast<double>(lines.size() - 1);
    for (const TitleWrapping::Line &line : lines) {
        const double width = measure.widthOf(line.text) * layout.scale;
        const double left = (layout.size.width() - width) / 2;
        const QTransform place(layout.em / TitleFont::em, 0, 0, layout.em / TitleFont::em, left, baseline);
        const TitleLayers::Shapes shapes = TitleLayers::shapes(line.text, measure.font().font);
        const QPainterPath outline = place.map(shapes.outline);
        QRectF ink = outline.boundingRect();
        for (const QGlyphRun &run : shapes.pictures) {
            result.glyphs.pictures.push_back({.run = run, .place = place});
            ink = ink.united(place.mapRect(run.boundingRect()));
        }
        layout.lines.append({.text = line.text, .baseline = baseline, .left = left, .width = width, .ink = ink});
        layout.ink = layout.ink.united(ink);
        std::ranges::move(TitleLayers::pieces(outline), std::back_inserter(result.glyphs.pieces));
        baseline += measure.lineSpacing() * layout.scale;
    }
    layout.bounds = boundsOf(layout, options);
    return result;
}

/// A light line on a faint dark one: seen on every backdrop, and quieter than any title.
void drawGuide(QPainter &painter, const QRectF &area, double thickness, Qt::PenStyle style)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 70), thickness, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(area);
    painter.setPen(QPen(QColor(255, 255, 255, 150), thickness, style, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(area);
}

/// On whole pixels, so that lines are equally thick on all sides.
QRectF aligned(const QRectF &area, double thickness)
{
    const double half = std::fmod(thickness, 2) / 2;
    return {QPointF(std::round(area.left()) + half, std::round(area.top()) + half),
            QPointF(std::round(area.right()) - half, std::round(area.bottom()) - half)};
}

void drawGuides(QImage &canvas)
{
    const double thickness = std::max(1.0, std::round(std::min(canvas.width(), canvas.height()) / 720.0));
    QPainter painter(&canvas);
    drawGuide(painter, aligned(centred(canvas.size(), TitleFrame::actionSafe), thickness), thickness, Qt::DashLine);
    drawGuide(painter, aligned(centred(canvas.size(), TitleFrame::titleSafe), thickness), thickness, Qt::SolidLine);
}

} // namespace

namespace TitlePicture {

QSize fittedSize(const Options &options, QSize size)
{
    if (options.width < 1 || options.height < 1 || size.isEmpty())
        return {};
    const auto width = static_cast<double>(options.width);
    const auto height = static_cast<double>(options.height);
    const double scale = std::min(size.width() / width, size.height() / height);
    const auto pixels = [](double length, int most) {
        return std::clamp(static_cast<int>(std::lround(length)), 1, most);
    };
    return {pixels(width * scale, size.width()), pixels(height * scale, size.height())};
}

double widthOf(const QString &text, const Options &options)
{
    return TitleMeasure(options).widestOf(text);
}

Layout layout(const QString &text, const Options &options, QSize size)
{
    TitleMeasure measure(options);
    return layout(text, options, size, measure);
}

Layout layout(const QString &text, const Options &options, QSize size, TitleMeasure &measure)
{
    return compose(text, options, size, measure).layout;
}

QImage draw(const QString &text, const Options &options, QSize size, const TitleBackdrop &backdrop, Guides guides)
{
    QImage canvas;
    TitleMeasure measure(options);
    drawInto(canvas, text, options, size, backdrop, guides, measure);
    return canvas;
}

void drawInto(QImage &canvas, const QString &text, const Options &options, QSize size, const TitleBackdrop &backdrop,
              Guides guides, TitleMeasure &measure)
{
    const Composition composition = compose(text, options, size, measure);
    const QSize pixels = composition.layout.size;
    if (pixels.isEmpty()) {
        canvas = QImage();
        return;
    }
    if (canvas.size() != pixels || canvas.format() != QImage::Format_ARGB32_Premultiplied)
        canvas = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    TitleBackdrops::draw(backdrop, canvas);
    if (guides == Guides::safeAreas)
        drawGuides(canvas);
    TitleLayers::draw(canvas, composition.glyphs, composition.layout, options);
}

} // namespace TitlePicture
