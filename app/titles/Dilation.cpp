#include "app/titles/Dilation.h"

#include <algorithm>
#include <cmath>

namespace {

/// One place of the disc's rim, in one quarter: what covers a pixel covers the one at this distance by so much more.
struct RimPlace
{
    int x;
    int gain; ///< -255 to 255.
};

/// One row of the disc, as far from its middle as its place in the list says.
struct DiscRow
{
    int half = -1; ///< Half the width of the part that is covered whatever an edge is like; below 0 for none.
    std::vector<RimPlace> rim;
};

std::vector<DiscRow> discOf(double radius)
{
    std::vector<DiscRow> disc;
    for (int y = 0; y < radius + 1; ++y) {
        DiscRow row;
        for (int x = 0;; ++x) {
            const double distance = std::hypot(x, y);
            if (distance >= radius + 1)
                break;
            if (distance <= radius - 1)
                row.half = x;
            else
                row.rim.push_back({.x = x, .gain = static_cast<int>(std::lround((radius - distance) * 255))});
        }
        disc.push_back(std::move(row));
    }
    return disc;
}

using Row = std::vector<uchar>;

/// Where one covers more.
void cover(uchar *to, const uchar *from, int count)
{
    for (int i = 0; i < count; ++i)
        to[i] = std::max(to[i], from[i]);
}

/// Rows with a margin on all sides, so that nothing looks where its neighbours end.
class Canvas
{
public:
    Canvas(int width, int height, int margin)
        : m_width(width)
        , m_height(height)
        , m_margin(margin)
        , m_stride(width + 2 * margin)
        , m_values(static_cast<size_t>(m_stride) * static_cast<size_t>(height + 2 * margin), 0)
    {}

    uchar *row(int y) { return m_values.data() + static_cast<ptrdiff_t>(m_stride) * (y + m_margin) + m_margin; }

    std::vector<uchar> withoutMargin()
    {
        std::vector<uchar> values;
        values.reserve(static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
        for (int y = 0; y < m_height; ++y)
            values.insert(values.end(), row(y), row(y) + m_width);
        return values;
    }

private:
    int m_width;
    int m_height;
    int m_margin;
    int m_stride;
    std::vector<uchar> m_values;
};

/// Puts the disc on every pixel of one row.
class RowPainter
{
public:
    RowPainter(int width, double radius)
        : m_disc(discOf(radius))
        , m_width(width)
        , m_margin(static_cast<int>(m_disc.size()))
        , m_flat(static_cast<size_t>(width + 2 * m_margin))
        , m_wider(m_flat.size())
        , m_rim(static_cast<size_t>(width))
    {}

    int margin() const { return m_margin; }

    void paint(const uchar *pixels, int y, Canvas &canvas)
    {
        std::ranges::fill(m_flat, uchar(0));
        std::transform(pixels, pixels + m_width, m_flat.begin() + m_margin,
                       [](uchar value) { return static_cast<uchar>(value ? 255 : 0); });
        m_half = 0;
        // From the narrow rows of the disc to the wide one in its middle.
        for (int distance = m_margin - 1; distance >= 0; --distance) {
            const DiscRow &row = m_disc[static_cast<size_t>(distance)];
            if (row.half >= 0) {
                widen(row.half);
                onBothSides(y, distance,
                            [&](int to) { cover(canvas.row(to) - m_margin, m_flat.data(), m_width + 2 * m_margin); });
            }
            for (const RimPlace &place : row.rim) {
                makeRim(pixels, place.gain);
                onBothSides(y, distance, [&](int to) {
                    cover(canvas.row(to) + place.x, m_rim.data(), m_width);
                    if (place.x > 0)
                        cover(canvas.row(to) - place.x, m_rim.data(), m_width);
                });
            }
        }
    }

private:
    template <class Paint>
    static void onBothSides(int y, int distance, Paint &&paint)
    {
        paint(y - distance);
        if (distance > 0)
            paint(y + distance);
    }

    /// Grows the row to `half` pixels on either side, as far in a step as leaves no gap.
    void widen(int half)
    {
        while (m_half < half) {
            const int step = std::min(half - m_half, 2 * m_half + 1);
            const auto size = static_cast<int>(m_flat.size());
            m_wider = m_flat;
            cover(m_wider.data() + step, m_flat.data(), size - step);
            cover(m_wider.data(), m_flat.data() + step, size - step);
            m_flat.swap(m_wider);
            m_half += step;
        }
    }

    void makeRim(const uchar *pixels, int gain)
    {
        for (int x = 0; x < m_width; ++x) {
            const int value = std::clamp(pixels[x] + gain, 0, 255);
            m_rim[static_cast<size_t>(x)] = static_cast<uchar>(pixels[x] ? value : 0);
        }
    }

    std::vector<DiscRow> m_disc;
    int m_width;
    int m_margin;
    Row m_flat; ///< 255 within m_half pixels of anything covered. With a margin.
    Row m_wider;
    Row m_rim;
    int m_half = 0;
};

} // namespace

std::vector<uchar> Dilation::grown(const std::vector<uchar> &coverage, int width, int height, double radius)
{
    if (radius <= 0 || width <= 0 || height <= 0)
        return coverage;
    RowPainter painter(width, radius);
    Canvas canvas(width, height, painter.margin());
    for (int y = 0; y < height; ++y) {
        const uchar *const row = coverage.data() + static_cast<ptrdiff_t>(width) * y;
        if (std::any_of(row, row + width, [](uchar value) { return value != 0; }))
            painter.paint(row, y, canvas);
    }
    return canvas.withoutMargin();
}
