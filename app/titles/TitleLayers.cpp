#include "app/titles/TitleLayers.h"

#include "app/titles/Dilation.h"
#include "app/titles/GaussianBlur.h"
#include "app/titles/TitleColor.h"

#include <QHash>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

QColor colorOf(const QString &text, const QString &otherwise)
{
    return TitleColor::read(text).value_or(*TitleColor::read(otherwise));
}

void drawPictures(QPainter &painter, const std::vector<TitleLayers::Glyphs::Pictures> &pictures)
{
    const QTransform before = painter.transform();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const TitleLayers::Glyphs::Pictures &each : pictures) {
        painter.setTransform(each.place * before);
        painter.drawGlyphRun(QPointF(), each.run);
    }
    painter.setTransform(before);
}

/// Shadow and stroke are made of the same mask: all that glyphs and stroke cover.
class Silhouette
{
public:
    Silhouette(const TitleLayers::Glyphs &glyphs, const TitlePicture::Layout &layout)
        : m_layout(layout)
    {
        // What stands farther out than blur and stroke reach leaves no trace in the picture.
        const int reach = GaussianBlur::reach(layout.sigma) +
                          static_cast<int>(std::ceil(layout.shadow.x()) + std::ceil(layout.stroke)) + 1;
        m_area = layout.bounds.toAlignedRect().adjusted(-1, -1, 1, 1) &
                 QRect(QPoint(), layout.size).adjusted(-reach, -reach, reach, reach);
        m_glyphs = glyphCoverage(glyphs);
        m_all = Dilation::grown(m_glyphs, m_area.width(), m_area.height(), layout.stroke);
    }

    void drawShadow(QPainter &painter, const QColor &color) const
    {
        std::vector<uchar> mask(m_all.size());
        std::ranges::transform(shadowCoverage(), mask.begin(), [](float value) {
            return static_cast<uchar>(std::min(value * (256.0F / 255.0F), 255.0F));
        });
        painter.drawImage(m_area.topLeft(), tinted(mask, color));
    }

    void drawStroke(QPainter &painter, const QColor &color) const
    {
        painter.drawImage(m_area.topLeft(), tinted(m_all, color));
    }

    /// The stroke without what the glyphs cover: seen through letters that are not opaque, it would tint them.
    void drawHollowStroke(QPainter &painter, const QColor &color) const
    {
        std::vector<uchar> mask(m_all.size());
        std::ranges::transform(m_all, m_glyphs, mask.begin(),
                               [](uchar all, uchar glyph) { return static_cast<uchar>(all - std::min(all, glyph)); });
        painter.drawImage(m_area.topLeft(), tinted(mask, color));
    }

private:
    std::vector<uchar> glyphCoverage(const TitleLayers::Glyphs &glyphs) const
    {
        QImage image(m_area.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-QPointF(m_area.topLeft()));
        for (const QPainterPath &piece : glyphs.pieces)
            painter.fillPath(piece, Qt::black);
        drawPictures(painter, glyphs.pictures);
        painter.end();
        std::vector<uchar> coverage(static_cast<size_t>(m_area.width()) * static_cast<size_t>(m_area.height()));
        auto at = coverage.begin();
        for (int y = 0; y < m_area.height(); ++y) {
            const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            at = std::transform(row, row + m_area.width(), at,
                                [](QRgb pixel) { return static_cast<uchar>(qAlpha(pixel)); });
        }
        return coverage;
    }

    /// The mask, moved by the shadow's offset and blurred, from 0 to 255.
    std::vector<float> shadowCoverage() const
    {
        // Between pixels the offset is shared out among the four around it.
        const int right = static_cast<int>(std::floor(m_layout.shadow.x()));
        const int down = static_cast<int>(std::floor(m_layout.shadow.y()));
        const auto partX = static_cast<float>(m_layout.shadow.x() - right);
        const auto partY = static_cast<float>(m_layout.shadow.y() - down);
        const int width = m_area.width();
        const std::vector<uchar> nothing(static_cast<size_t>(width), 0);
        const auto row = [&](int y) {
            return y >= 0 ? m_all.data() + static_cast<ptrdiff_t>(width) * y : nothing.data();
        };
        std::vector<float> coverage(m_all.size(), 0.0F);
        for (int y = 0; y < m_area.height(); ++y) {
            const uchar *const near = row(y - down);
            const uchar *const far = row(y - down - 1);
            float *const to = coverage.data() + static_cast<ptrdiff_t>(width) * y;
            const auto column = [&](int x) {
                return static_cast<float>(near[x]) * (1 - partY) + static_cast<float>(far[x]) * partY;
            };
            for (int x = right + 1; x < width; ++x)
                to[x] = column(x - right) * (1 - partX) + column(x - right - 1) * partX;
        }
        GaussianBlur::apply(coverage, width, m_area.height(), m_layout.sigma);
        return coverage;
    }

    /// `color` as opaque as `mask` says.
    QImage tinted(const std::vector<uchar> &mask, const QColor &color) const
    {
        std::array<QRgb, 256> shades{};
        for (size_t alpha = 0; alpha < shades.size(); ++alpha) {
            const float part = color.alphaF() * static_cast<float>(alpha);
            shades[alpha] =
                qPremultiply(qRgba(color.red(), color.green(), color.blue(), static_cast<int>(std::lround(part))));
        }
        QImage image(m_area.size(), QImage::Format_ARGB32_Premultiplied);
        auto at = mask.begin();
        for (int y = 0; y < m_area.height(); ++y) {
            std::transform(at, at + m_area.width(), reinterpret_cast<QRgb *>(image.scanLine(y)),
                           [&](uchar alpha) { return shades[alpha]; });
            at += m_area.width();
        }
        return image;
    }

    const TitlePicture::Layout &m_layout;
    QRect m_area;                ///< Of the picture that the masks cover.
    std::vector<uchar> m_glyphs; ///< From 0 to 255.
    std::vector<uchar> m_all;    ///< Glyphs and stroke.
};

/// One closed curve of an outline, and how far it stretches from left to right.
struct Contour
{
    QPainterPath path;
    double left;
    double right;
};

std::vector<Contour> contours(const QPainterPath &outline)
{
    std::vector<Contour> list;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPainterPath::Element element = outline.elementAt(i);
        if (element.isMoveTo()) {
            list.push_back({.path = QPainterPath(element), .left = element.x, .right = element.x});
            continue;
        }
        QPainterPath &path = list.back().path;
        if (element.isLineTo()) {
            path.lineTo(element);
        } else {
            path.cubicTo(element, outline.elementAt(i + 1), outline.elementAt(i + 2));
            i += 2;
        }
    }
    for (Contour &contour : list) {
        const QRectF box = contour.path.controlPointRect();
        contour.left = box.left();
        contour.right = box.right();
    }
    return list;
}

/// Whether there may be signs in the line that fonts have as coloured pictures. Most lines have none, and need no
/// second look.
bool mayHavePictures(const QString &line)
{
    return std::ranges::any_of(line, [](QChar each) {
        const char16_t unit = each.unicode();
        return each.isSurrogate() || (unit >= 0x2030 && unit < 0x2C00) || unit == 0xFE0F || unit == 0x3030 ||
               unit == 0x303D || unit == 0x3297 || unit == 0x3299 || unit == 0xA9 || unit == 0xAE;
    });
}

/// By its tables. To ask such a font for an outline spoils the widths that it answers from then on.
bool hasPictures(const QRawFont &font)
{
    static std::mutex mutex;
    static QHash<QString, bool> known; // Tables are copied to be looked at, and may be large.
    const std::lock_guard lock(mutex);
    const auto found = known.constFind(font.familyName());
    if (found != known.cend())
        return *found;
    const auto has = [&font](const char *table) { return !font.fontTable(table).isEmpty(); };
    return *known.insert(font.familyName(), has("CBLC") || has("COLR") || has("sbix"));
}

void addOutlines(QPainterPath &path, const QGlyphRun &run)
{
    const QList<quint32> glyphs = run.glyphIndexes();
    const QList<QPointF> positions = run.positions();
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        path.addPath(run.rawFont().pathForGlyph(glyphs[i]).translated(positions[i]));
}

} // namespace

TitleLayers::Shapes TitleLayers::shapes(const QString &line, const QFont &font)
{
    Shapes shapes;
    shapes.outline.setFillRule(Qt::WindingFill);
    QList<QGlyphRun> runs;
    if (mayHavePictures(line)) {
        QTextLayout layout(line, font);
        layout.beginLayout();
        const QTextLine only = layout.createLine();
        layout.endLayout();
        runs = layout.glyphRuns();
        for (QGlyphRun &run : runs) {
            QList<QPointF> positions = run.positions();
            for (QPointF &position : positions)
                position.ry() -= only.ascent();
            run.setBoundingRect(run.boundingRect().translated(0, -only.ascent()));
            run.setPositions(positions);
        }
    }
    const auto isPictured = [](const QGlyphRun &run) { return hasPictures(run.rawFont()); };
    if (!std::ranges::any_of(runs, isPictured)) {
        shapes.outline.addText(QPointF(), font, line);
        return shapes;
    }
    for (const QGlyphRun &run : runs) {
        if (isPictured(run))
            shapes.pictures.append(run);
        else
            addOutlines(shapes.outline, run);
    }
    return shapes;
}

std::vector<QPainterPath> TitleLayers::pieces(const QPainterPath &outline)
{
    std::vector<Contour> list = contours(outline);
    std::ranges::sort(list, {}, &Contour::left);
    std::vector<QPainterPath> result;
    double right = 0;
    for (const Contour &contour : list) {
        if (!result.empty() && contour.left <= right) {
            result.back().addPath(contour.path);
            right = std::max(right, contour.right);
            continue;
        }
        result.push_back(contour.path);
        result.back().setFillRule(Qt::WindingFill);
        right = contour.right;
    }
    return result;
}

void TitleLayers::draw(QImage &canvas, const Glyphs &glyphs, const TitlePicture::Layout &layout, const Options &options)
{
    if (!layout.bounds.intersects(QRectF(QPointF(), layout.size)))
        return;
    const Options first;
    const QColor fill = colorOf(options.fontColor, first.fontColor);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing);
    if (options.shadowEnabled || layout.stroke > 0) {
        const Silhouette silhouette(glyphs, layout);
        const QColor stroke = colorOf(options.strokeColor, first.strokeColor);
        if (options.shadowEnabled)
            silhouette.drawShadow(painter, colorOf(options.shadowColor, first.shadowColor));
        if (layout.stroke > 0 && fill.alpha() == 255)
            silhouette.drawStroke(painter, stroke);
        else if (layout.stroke > 0)
            silhouette.drawHollowStroke(painter, stroke);
    }
    for (const QPainterPath &piece : glyphs.pieces)
        painter.fillPath(piece, fill);
    painter.setOpacity(fill.alphaF());
    drawPictures(painter, glyphs.pictures);
}
