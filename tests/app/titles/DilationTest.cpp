#include "app/titles/Dilation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int size = 61;
constexpr int middle = size / 2;

uchar at(const std::vector<uchar> &pixels, int x, int y)
{
    return pixels[static_cast<size_t>(y * size + x)];
}

/// What covers the left half of a picture up to `edge`, grown.
std::vector<uchar> grownEdge(double edge, double radius)
{
    std::vector<uchar> pixels;
    for (int i = 0; i < size * size; ++i)
        pixels.push_back(static_cast<uchar>(std::lround(std::clamp(edge - i % size, 0.0, 1.0) * 255)));
    return Dilation::grown(pixels, size, size, radius);
}

std::vector<uchar> grownPoint(double radius)
{
    std::vector<uchar> pixels(static_cast<size_t>(size * size), 0);
    pixels[static_cast<size_t>(middle * size + middle)] = 255;
    return Dilation::grown(pixels, size, size, radius);
}

} // namespace

TEST(Dilation, moves_an_edge_by_the_radius)
{
    for (const double edge : {20.0, 20.3, 20.9}) {
        for (const double radius : {0.0, 0.4, 1.0, 2.5, 7.0, 20.0}) {
            const std::vector<uchar> pixels = grownEdge(edge, radius);
            for (int x = 0; x < size; ++x)
                EXPECT_NEAR(at(pixels, x, middle) / 255.0, std::clamp(edge + radius - x, 0.0, 1.0), 0.02)
                    << "edge " << edge << ", radius " << radius << ", at " << x;
        }
    }
}

TEST(Dilation, draws_a_disc_around_a_point)
{
    for (const double radius : {0.6, 3.0, 5.5, 20.0}) {
        const std::vector<uchar> pixels = grownPoint(radius);
        double area = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const uchar value = at(pixels, x, y);
                area += value / 255.0;
                const double distance = std::hypot(x - middle, y - middle);
                EXPECT_FALSE(distance <= radius && value < 255) << "a hole at " << x << ", " << y;
                EXPECT_FALSE(distance >= radius + 1 && value > 0) << "too far at " << x << ", " << y;
            }
        }
        const double expected = std::acos(-1.0) * (radius + 0.5) * (radius + 0.5);
        EXPECT_NEAR(area / expected, 1, 0.12) << radius;
    }
}

TEST(Dilation, cuts_off_what_grows_out_of_the_picture)
{
    const std::vector<uchar> corner{255, 0, 0, 0};
    EXPECT_EQ(Dilation::grown(corner, 2, 2, 9), std::vector<uchar>(4, 255));
    EXPECT_EQ(Dilation::grown({}, 0, 0, 3), std::vector<uchar>());
}
