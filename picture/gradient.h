// SPDX-License-Identifier: GPL-3.0-or-later
// A value that runs evenly over a triangle of the screen.
#pragma once

#include <algorithm>
#include <cmath>

namespace polyfab {

/// A corner as the picture has it, in pixels; whole numbers are pixel middles.
struct ScreenCorner {
    double x, y;
    double depth; ///< the lower, the nearer to the viewer
};

/// The value at a pixel. Between the corners it can't leave the range of theirs; what rounding
/// makes of a sliver is brought back into it.
struct Gradient {
    double base, right, down; ///< at (0, 0), and what is added for each pixel
    double low, high;

    double inRow(double y) const { return base + down * y; }
    double at(double x, double row) const {
        const double value = row + right * x;
        return value < low ? low : value > high ? high : value;
    }
};

/// What the gradients over one triangle have in common. The corners count in this order: with
/// another one the last digits may differ.
class GradientFrame {
  public:
    explicit GradientFrame(const ScreenCorner (&c)[3])
        : x0(c[0].x), y0(c[0].y), x1(c[1].x - x0), y1(c[1].y - y0), x2(c[2].x - x0),
          y2(c[2].y - y0), share(1 / (x1 * y2 - x2 * y1)) {}

    /// The gradient of these values at the corners. Over a sliver whose sides are so nearly one
    /// that no number can tell how steep it is, the first value is everywhere.
    [[nodiscard]] Gradient of(double v0, double v1, double v2) const {
        const double right = ((v1 - v0) * y2 - (v2 - v0) * y1) * share;
        const double down = ((v2 - v0) * x1 - (v1 - v0) * x2) * share;
        const double base = v0 - right * x0 - down * y0;
        if (!std::isfinite(base)) return {v0, 0, 0, v0, v0};
        return {base, right, down, std::min({v0, v1, v2}), std::max({v0, v1, v2})};
    }

  private:
    double x0, y0, x1, y1, x2, y2, share;
};

} // namespace polyfab
