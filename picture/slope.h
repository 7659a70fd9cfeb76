// SPDX-License-Identifier: GPL-3.0-or-later
// Values that run evenly over a triangle of the screen.
#pragma once

#include <algorithm>

namespace polyfab {

/// A corner as the picture has it, in pixels; whole numbers are pixel middles.
struct ScreenCorner {
    double x, y;
    double depth; ///< the lower, the nearer to the viewer
};

/// What part the second and the third corner have in what a pixel shows, from 0 to 1 together. The
/// first one has the rest.
struct Shares {
    double second, third;
};

/// Where pixels lie between the corners. These count in their order: with another one the last
/// digits may differ.
class TriangleFrame {
  public:
    explicit TriangleFrame(const ScreenCorner (&c)[3])
        : x0(c[0].x), y0(c[0].y), x1(c[1].x - x0), y1(c[1].y - y0), x2(c[2].x - x0),
          y2(c[2].y - y0), part(1 / (x1 * y2 - x2 * y1)) {}

    /// Of a pixel in the triangle. What rounding makes of a sliver is brought back into it, and of
    /// one without area some place in it.
    [[nodiscard]] Shares at(double x, double y) const {
        const double dx = x - x0, dy = y - y0;
        const double second = (dx * y2 - dy * x2) * part, third = (x1 * dy - y1 * dx) * part;
        const double kept = within(second, 1);
        return {kept, within(third, 1 - kept)};
    }

  private:
    /// What is not a number becomes 0.
    static double within(double value, double most) {
        const double positive = value > 0 ? value : 0;
        return positive < most ? positive : most;
    }

    double x0, y0, x1, y1, x2, y2, part;
};

/// A value that has been set for the corners.
struct Slope {
    double first = 0, toSecond = 0, toThird = 0; ///< and what is added on the way to the others

    Slope() = default;
    Slope(double v0, double v1, double v2) : first(v0), toSecond(v1 - v0), toThird(v2 - v0) {}
    double at(const Shares& shares) const {
        return first + toSecond * shares.second + toThird * shares.third;
    }
};

} // namespace polyfab
