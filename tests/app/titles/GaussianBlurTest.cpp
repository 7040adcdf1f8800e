#include "app/titles/GaussianBlur.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace {

constexpr int size = 129;
constexpr int middle = size / 2;

std::vector<float> point(double sigma)
{
    std::vector<float> pixels(static_cast<size_t>(size * size), 0.0F);
    pixels[static_cast<size_t>(middle * size + middle)] = 1;
    GaussianBlur::apply(pixels, size, size, sigma);
    return pixels;
}

double at(const std::vector<float> &pixels, int x, int y)
{
    return static_cast<double>(pixels[static_cast<size_t>(y * size + x)]);
}

} // namespace

TEST(GaussianBlur, comes_near_the_curve_at_every_radius)
{
    for (const double sigma : {1.0, 1.5, 2.0, 3.7, 8.0, 15.0}) {
        const std::vector<float> pixels = point(sigma);
        const double peak = 1 / (2 * std::acos(-1.0) * sigma * sigma);
        for (int x = 0; x < size; ++x) {
            const double distance = (x - middle) / sigma;
            EXPECT_NEAR(at(pixels, x, middle) / peak, std::exp(-distance * distance / 2), 0.13)
                << "sigma " << sigma << " at " << x - middle;
        }
    }
}

TEST(GaussianBlur, loses_no_light_and_is_alike_on_all_sides)
{
    for (const double sigma : {0.1, 0.5, 2.0, 9.0}) {
        const std::vector<float> pixels = point(sigma);
        EXPECT_NEAR(std::accumulate(pixels.begin(), pixels.end(), 0.0), 1.0, 1e-4) << sigma;
        const int reach = GaussianBlur::reach(sigma);
        EXPECT_NEAR(at(pixels, middle - 1, middle), at(pixels, middle + 1, middle), 1e-6);
        EXPECT_NEAR(at(pixels, middle, middle - 1), at(pixels, middle + 1, middle), 1e-6);
        EXPECT_NEAR(at(pixels, middle + reach + 1, middle), 0, 1e-6) << sigma;
    }
}

TEST(GaussianBlur, leaves_all_as_it_is_without_a_radius)
{
    EXPECT_EQ(at(point(0), middle, middle), 1);
}
