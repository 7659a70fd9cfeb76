// SPDX-License-Identifier: GPL-3.0-or-later
// Exact clipping of pixel lines: the first and the last step on the canvas are worked out from the
// line's own rule, in 64 bits. Positions too far for that are first cut off in floating point.
#include "picture/raster.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace polyfab {
namespace {

using Wide = std::int64_t;

/// Smallest whole number that is not below a / b, for b > 0.
Wide ceilDivide(Wide a, Wide b) { return a / b + (a % b > 0 ? 1 : 0); }

/// One direction of a line: where it starts, which way it goes, and the canvas side.
struct Axis {
    Wide start;
    Wide delta;
    Wide side;
    std::ptrdiff_t step; ///< pixels to the next position

    bool back() const { return delta < 0; }
    Wide length() const { return std::abs(delta); }
    /// Moves away from the start that lead onto the canvas: the least and the most of them.
    std::pair<Wide, Wide> movesInside() const {
        return back() ? std::pair(start - side + 1, start) : std::pair(-start, side - 1 - start);
    }
    Wide placeAfter(Wide moves) const { return start + (back() ? -moves : moves); }
    std::ptrdiff_t offsetAfter(Wide moves) const { return placeAfter(moves) * std::abs(step); }
};

Axis axis(int from, int to, int side, std::ptrdiff_t pitch) {
    return {from, Wide{to} - from, side, to < from ? -pitch : pitch};
}

/// Brings the end (u, v) of a line to u = `bound` if it lies beyond, towards the other end.
void cutEnd(double& u, double& v, double otherU, double otherV, double bound) {
    if (std::abs(u) <= std::abs(bound)) return;
    v += (otherV - v) * ((bound - u) / (otherU - u));
    u = bound;
}

/// Cuts the line to |u| <= lineReach. False when nothing is left.
bool cut(double& u0, double& v0, double& u1, double& v1) {
    constexpr double reach = lineReach;
    if (std::max(u0, u1) < -reach || std::min(u0, u1) > reach) return false;
    cutEnd(u0, v0, u1, v1, std::copysign(reach, u0));
    cutEnd(u1, v1, u0, v0, std::copysign(reach, u1));
    return true;
}

int wholePixel(double value) {
    constexpr double reach = lineReach;
    return static_cast<int>(std::floor(std::clamp(value + 0.5, -reach, reach)));
}

/// The pixels on the canvas of a line one pixel wide.
void drawThin(const Canvas& canvas, const Axis& major, const Axis& minor, const Stroke& stroke) {
    const Wide n = major.length();
    const Wide m = minor.length();

    auto [first, last] = major.movesInside();
    first = std::max<Wide>(first, 0);
    last = std::min(last, n);
    const auto [least, most] = minor.movesInside();
    if (most < 0 || least > m) return;
    if (m > 0) {
        // Step i has made at least k moves across from 2*i*m >= (2*k - 1)*n on.
        if (least > 0) first = std::max(first, ceilDivide((2 * least - 1) * n, 2 * m));
        if (most < m) last = std::min(last, ceilDivide((2 * most + 1) * n, 2 * m) - 1);
    }
    if (first > last) return;

    const Wide sum = 2 * first * m + n;
    const Wide moves = n > 0 ? sum / (2 * n) : 0;
    const LineRun run{major.step, minor.step, sum - moves * 2 * n, 2 * m, 2 * n};
    std::uint32_t* const pixel =
        canvas.pixels + major.offsetAfter(first) + minor.offsetAfter(moves);
    if (first == 0) *pixel = stroke.color;
    run.draw(pixel, last - first, stroke, static_cast<int>(major.placeAfter(first)), major.back());
}

bool isOn(const Canvas& canvas, int x, int y) {
    return x >= 0 && x < canvas.width && y >= 0 && y < canvas.height;
}

/// One of the lines that lie side by side in a stroke.
void drawOne(const Canvas& canvas, int x0, int y0, int x1, int y1, const Stroke& stroke) {
    if (isOn(canvas, x0, y0) && isOn(canvas, x1, y1)) {
        const auto draw = stroke.pattern == Stroke::solid ? drawInside<false> : drawInside<true>;
        return draw(canvas, x0, y0, x1, y1, stroke);
    }
    Axis major = axis(x0, x1, canvas.width, 1);
    Axis minor = axis(y0, y1, canvas.height, canvas.stride);
    if (major.length() < minor.length()) std::swap(major, minor);
    drawThin(canvas, major, minor, stroke);
}

} // namespace

void drawClipped(const Canvas& canvas, int x0, int y0, int x1, int y1, const Stroke& stroke) {
    if (canvas.width <= 0 || canvas.height <= 0) return;
    const bool flat = std::abs(Wide{x1} - x0) >= std::abs(Wide{y1} - y0);
    const int right = flat ? 0 : 1;
    const int down = flat ? 1 : 0;
    const int first = -(stroke.width / 2);
    for (int i = first; i < first + stroke.width; ++i) {
        drawOne(canvas, x0 + i * right, y0 + i * down, x1 + i * right, y1 + i * down, stroke);
    }
}

void drawLine(const Canvas& canvas, double x0, double y0, double x1, double y1,
              const Stroke& stroke) {
    const auto usable = [](double value) { return std::abs(value) <= 1e300; };
    if (!usable(x0) || !usable(y0) || !usable(x1) || !usable(y1)) return;
    if (!cut(x0, y0, x1, y1) || !cut(y0, x0, y1, x1)) return;
    drawClipped(canvas, wholePixel(x0), wholePixel(y0), wholePixel(x1), wholePixel(y1), stroke);
}

} // namespace polyfab
