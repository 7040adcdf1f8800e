#pragma once

#include <vector>

/// Blurs coverage: one value a pixel, row by row.
namespace GaussianBlur {

/// Blurs `pixels`, `width` × `height` of them, with the standard deviation `sigma` in pixels; 0 leaves them as they
/// are. What lies outside counts as 0: leave a margin of `reach`.
///
/// Three passes of a box each way, its ends weighted so that the variance is exactly that of the curve asked for. No
/// value is farther from the curve than 13 % of its peak, which nobody sees, and the time does not grow with sigma.
void apply(std::vector<float> &pixels, int width, int height, double sigma);

/// How many pixels from a place the blur still reaches.
int reach(double sigma);

} // namespace GaussianBlur
