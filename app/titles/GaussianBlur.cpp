#include "app/titles/GaussianBlur.h"

#include <algorithm>
#include <cmath>

namespace {

/// A box of 2 × radius + 1 whole pixels and two ends that count for a fraction. Its weights sum to 1.
struct Box
{
    int radius;
    float whole;
    float end;
};

constexpr int passes = 3;

/// The box whose variance, taken `passes` times, is sigma squared.
Box boxFor(double sigma)
{
    const double variance = sigma * sigma / passes;
    const int radius = static_cast<int>(std::floor((std::sqrt(12 * variance + 1) - 1) / 2));
    const double width = 2 * radius + 1;
    const double alpha =
        width * (radius * (radius + 1.0) - 3 * variance) / (6 * (variance - (radius + 1.0) * (radius + 1.0)));
    const double sum = width + 2 * alpha;
    return {.radius = radius, .whole = static_cast<float>(1 / sum), .end = static_cast<float>(alpha / sum)};
}

/// One pass down the columns, for all columns at a time: `sums` slides along with the row.
void blurColumns(const std::vector<float> &from, std::vector<float> &to, int width, int height, const Box &box)
{
    const auto columns = static_cast<size_t>(width);
    const std::vector<float> nothing(columns, 0.0F);
    const auto row = [&](int y) {
        return y >= 0 && y < height ? from.data() + static_cast<size_t>(y) * columns : nothing.data();
    };
    std::vector<float> sums(columns, 0.0F);
    for (int y = 0; y < box.radius; ++y) {
        const float *const entering = row(y);
        for (size_t x = 0; x < columns; ++x)
            sums[x] += entering[x];
    }
    for (int y = 0; y < height; ++y) {
        const float *const entering = row(y + box.radius);
        const float *const leaving = row(y - box.radius - 1);
        const float *const below = row(y + box.radius + 1);
        float *const result = to.data() + static_cast<size_t>(y) * columns;
        for (size_t x = 0; x < columns; ++x) {
            sums[x] += entering[x] - leaving[x];
            result[x] = sums[x] * box.whole + (leaving[x] + below[x]) * box.end;
        }
    }
}

/// Turns rows into columns, in blocks that stay in the cache.
void transpose(const std::vector<float> &from, std::vector<float> &to, int width, int height)
{
    constexpr int block = 16;
    for (int top = 0; top < height; top += block) {
        for (int left = 0; left < width; left += block) {
            const int bottom = std::min(top + block, height);
            const int right = std::min(left + block, width);
            for (int y = top; y < bottom; ++y) {
                for (int x = left; x < right; ++x)
                    to[static_cast<size_t>(x) * static_cast<size_t>(height) + static_cast<size_t>(y)] =
                        from[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
            }
        }
    }
}

} // namespace

void GaussianBlur::apply(std::vector<float> &pixels, int width, int height, double sigma)
{
    if (sigma <= 0 || width <= 0 || height <= 0)
        return;
    const Box box = boxFor(sigma);
    std::vector<float> other(pixels.size());
    const auto blur = [&](int columns, int rows) {
        for (int pass = 0; pass < passes; ++pass) {
            blurColumns(pixels, other, columns, rows, box);
            pixels.swap(other);
        }
        transpose(pixels, other, columns, rows);
        pixels.swap(other);
    };
    blur(width, height);
    blur(height, width);
}

int GaussianBlur::reach(double sigma)
{
    return sigma > 0 ? passes * (boxFor(sigma).radius + 1) : 0;
}
