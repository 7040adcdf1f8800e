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

QPen strokePen(double width)
{
    // A round joint costs as much as all the rest of an outline, and below this width nobody can tell it.
    constexpr double roundFrom = 1;
    // The inner half of the pen lies under the glyphs.
    QPen pen(Qt::black, width * 2, Qt::SolidLine, Qt::FlatCap, width < roundFrom ? Qt::MiterJoin : Qt::RoundJoin);
    pen.setMiterLimit(1.5);
    return pen;
}

/// Shadow and stroke are made of the same mask: all that glyphs and stroke cover.
class Silhouette
{
public:
    Silhouette(const std::vector<QPainterPath> &glyphs, const TitlePicture::Layout &layout)
        : m_glyphs(glyphs)
        , m_layout(layout)
    {
        // What stands farther out than the blur reaches leaves no trace in the picture.
        const int reach = GaussianBlur::reach(layout.sigma) + static_cast<int>(std::ceil(layout.shadow.x())) + 1;
        m_area = layout.bounds.toAlignedRect().adjusted(-1, -1, 1, 1) &
                 QRect(QPoint(), layout.size).adjusted(-reach, -reach, reach, reach);
        m_mask = QImage(m_area.size(), QImage::Format_ARGB32_Premultiplied);
        m_mask.fill(Qt::transparent);
        QPainter painter(&m_mask);
        prepare(painter);
        const QPen pen = strokePen(layout.stroke);
        for (const QPainterPath &piece : glyphs) {
            painter.fillPath(piece, Qt::black);
            if (layout.stroke > 0)
                painter.strokePath(piece, pen);
        }
    }

    void drawShadow(QPainter &painter, const QColor &color) const
    {
        const std::vector<float> coverage = shadowCoverage();
        painter.drawImage(m_area.topLeft(), tinted(color, [at = coverage.begin()](QRgb) mutable {
                              return std::clamp(static_cast<int>(*at++ + 0.5F), 0, 255);
                          }));
    }

    void drawStroke(QPainter &painter, const QColor &color) const
    {
        painter.drawImage(m_area.topLeft(), tinted(color, [](QRgb pixel) { return qAlpha(pixel); }));
    }

    /// Cuts the glyphs out: seen through letters that are not opaque, the stroke would tint them.
    void hollow()
    {
        QPainter painter(&m_mask);
        prepare(painter);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        for (const QPainterPath &piece : m_glyphs)
            painter.fillPath(piece, Qt::black);
    }

private:
    void prepare(QPainter &painter) const
    {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-QPointF(m_area.topLeft()));
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
        const std::vector<QRgb> nothing(static_cast<size_t>(width), 0);
        const auto row = [&](int y) {
            return y >= 0 ? reinterpret_cast<const QRgb *>(m_mask.constScanLine(y)) : nothing.data();
        };
        std::vector<float> coverage(static_cast<size_t>(width) * static_cast<size_t>(m_area.height()), 0.0F);
        for (int y = 0; y < m_area.height(); ++y) {
            const QRgb *const near = row(y - down);
            const QRgb *const far = row(y - down - 1);
            float *const to = coverage.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
            const auto column = [&](int x) {
                return static_cast<float>(near[x] >> 24) * (1 - partY) + static_cast<float>(far[x] >> 24) * partY;
            };
            for (int x = right + 1; x < width; ++x)
                to[x] = column(x - right) * (1 - partX) + column(x - right - 1) * partX;
        }
        GaussianBlur::apply(coverage, width, m_area.height(), m_layout.sigma);
        return coverage;
    }

    /// `color` as opaque as `alphaOf` says for each pixel of the mask in turn, from 0 to 255.
    template <class AlphaOf>
    QImage tinted(const QColor &color, AlphaOf &&alphaOf) const
    {
        std::array<QRgb, 256> shades{};
        for (size_t alpha = 0; alpha < shades.size(); ++alpha) {
            const float part = color.alphaF() * static_cast<float>(alpha);
            shades[alpha] =
                qPremultiply(qRgba(color.red(), color.green(), color.blue(), static_cast<int>(std::lround(part))));
        }
        QImage image(m_area.size(), QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < m_area.height(); ++y) {
            const auto *const from = reinterpret_cast<const QRgb *>(m_mask.constScanLine(y));
            auto *const to = reinterpret_cast<QRgb *>(image.scanLine(y));
            std::transform(from, from + m_area.width(), to,
                           [&](QRgb pixel) { return shades[static_cast<size_t>(alphaOf(pixel))]; });
        }
        return image;
    }

    const std::vector<QPainterPath> &m_glyphs;
    const TitlePicture::Layout &m_layout;
    QRect m_area; ///< Of the picture that the mask covers.
    QImage m_mask;
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

} // namespace

QPainterPath TitleLayers::outline(const QString &line, const QFont &font)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addText(QPointF(), font, line);
    return path;
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

void TitleLayers::draw(QImage &canvas, const std::vector<QPainterPath> &glyphs, const TitlePicture::Layout &layout,
                       const Options &options)
{
    if (!layout.bounds.intersects(QRectF(QPointF(), layout.size)))
        return;
    const Options first;
    const QColor fill = colorOf(options.fontColor, first.fontColor);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing);
    if (options.shadowEnabled || layout.stroke > 0) {
        Silhouette silhouette(glyphs, layout);
        if (options.shadowEnabled)
            silhouette.drawShadow(painter, colorOf(options.shadowColor, first.shadowColor));
        if (layout.stroke > 0) {
            if (fill.alpha() < 255)
                silhouette.hollow();
            silhouette.drawStroke(painter, colorOf(options.strokeColor, first.strokeColor));
        }
    }
    for (const QPainterPath &piece : glyphs)
        painter.fillPath(piece, fill);
}
