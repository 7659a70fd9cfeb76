// SPDX-License-Identifier: GPL-3.0-or-later
// Coverage is counted along the line's shorter direction only (Wu, "An efficient antialiasing
// technique", 1991, there for lines one pixel wide).
#include "picture/smooth.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

constexpr int one = 256; ///< a pixel

/// Farther out than any pixel of a canvas, and near enough for 64 bits.
constexpr double reach = 1 << 22;

/// Cuts the line to |u| <= reach. False when nothing is left.
bool cut(double& u0, double& v0, double& u1, double& v1) {
    if (std::max(u0, u1) < -reach || std::min(u0, u1) > reach) return false;
    const auto cutEnd = [](double& u, double& v, double otherU, double otherV) {
        if (std::abs(u) <= reach) return;
        const double bound = std::copysign(reach, u);
        v += (otherV - v) * ((bound - u) / (otherU - u));
        u = bound;
    };
    cutEnd(u0, v0, u1, v1);
    cutEnd(u1, v1, u0, v0);
    return true;
}

std::int64_t fixed(double value) {
    return static_cast<std::int64_t>(std::floor(value * one + 0.5));
}

/// Number of the pixel that a fixed position lies in.
int pixelOf(std::int64_t position) { return static_cast<int>((position + one / 2) >> 8); }

/// A line that runs up along its longer direction, u.
struct Run {
    std::int64_t u0, v0, u1, v1;
    std::ptrdiff_t alongU, alongV; ///< pixel steps
    int sizeU, sizeV;              ///< of the canvas
};

/// Covers the pixels of one column (row): the strip begins at `top`, counted from where the pixel
/// of number 0 begins.
void cover(std::uint32_t* column, const Run& run, std::int64_t top, const Stroke& stroke) {
    const int first = static_cast<int>(top >> 8);
    const auto part = static_cast<unsigned>(top & (one - 1));
    for (int i = 0; i <= stroke.width; ++i) {
        const int place = first + i;
        if (place < 0 || place >= run.sizeV) continue;
        const unsigned share = i == 0 ? one - part : i == stroke.width ? part : one;
        std::uint32_t& pixel = column[place * run.alongV];
        pixel = blended(pixel, stroke.color, share);
    }
}

void draw(const Canvas& canvas, const Run& run, const Stroke& stroke) {
    constexpr int finer = 16; // bits of the slope below a 256th
    const std::int64_t length = run.u1 - run.u0;
    const std::int64_t slope = length > 0 ? ((run.v1 - run.v0) << finer) / length : 0;
    const int begin = pixelOf(run.u0);
    const int first = std::max(begin, 0), last = std::min(pixelOf(run.u1), run.sizeU - 1);
    // From the strip's middle to its beginning, in the count of `cover`.
    const std::int64_t back = one / 2 - stroke.width * (one / 2);
    for (int u = first; u <= last; ++u) {
        if (u != begin && !stroke.draws(u)) continue;
        const std::int64_t along =
            std::clamp<std::int64_t>(std::int64_t{u} * one - run.u0, 0, length);
        const std::int64_t middle = run.v0 + (slope * along >> finer);
        cover(canvas.pixels + u * run.alongU, run, middle + back, stroke);
    }
}

/// Calls put(pixel) for the columns between the crossings of a row, pair by pair.
template <typename Put>
void fillRow(std::uint32_t* row, int width, std::vector<double>& crossings, Put put) {
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        const double most = width;
        const int first = static_cast<int>(std::ceil(std::clamp(crossings[i], 0.0, most)));
        const int end = static_cast<int>(std::ceil(std::clamp(crossings[i + 1], 0.0, most)));
        for (int x = first; x < end; ++x) put(row[x]);
    }
}

/// Calls put(pixel) for the pixels whose middles lie in the polygon.
template <typename Put>
void eachInside(const Canvas& canvas, std::span<const Place> corners, Put put) {
    double low = canvas.height, high = -1;
    for (const Place& corner : corners) {
        if (!std::isfinite(corner.x) || !std::isfinite(corner.y)) return;
        low = std::min(low, corner.y);
        high = std::max(high, corner.y);
    }
    std::vector<double> crossings;
    const int last = static_cast<int>(std::min(high, canvas.height - 1.0));
    for (int y = static_cast<int>(std::max(std::ceil(low), 0.0)); y <= last; ++y) {
        crossings.clear();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Place& a = corners[i];
            const Place& b = corners[(i + 1) % corners.size()];
            if ((a.y <= y) == (b.y <= y)) continue;
            crossings.push_back(a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)));
        }
        fillRow(canvas.pixels + y * canvas.stride, canvas.width, crossings, put);
    }
}

} // namespace

void drawSmoothLine(const Canvas& canvas, Place from, Place to, const Stroke& stroke) {
    const auto usable = [](double value) { return std::abs(value) <= 1e300; };
    if (!usable(from.x) || !usable(from.y) || !usable(to.x) || !usable(to.y)) return;
    if (!cut(from.x, from.y, to.x, to.y) || !cut(from.y, from.x, to.y, to.x)) return;
    Run run{fixed(from.x), fixed(from.y), fixed(to.x),  fixed(to.y), 1,
            canvas.stride, canvas.width,  canvas.height};
    if (std::abs(run.u1 - run.u0) < std::abs(run.v1 - run.v0)) {
        run = {run.v0, run.u0, run.v1, run.u1, run.alongV, run.alongU, run.sizeV, run.sizeU};
    }
    if (run.u0 > run.u1) {
        std::swap(run.u0, run.u1);
        std::swap(run.v0, run.v1);
    }
    if (run.v0 == run.v1) {
        // An even number of pixels lies one more above or to the left, as in a plain line.
        run.v0 = run.v1 =
            std::int64_t{pixelOf(run.v0)} * one - (stroke.width % 2 == 0 ? one / 2 : 0);
    }
    draw(canvas, run, stroke);
}

void tintPolygon(const Canvas& canvas, std::span<const Place> corners, std::uint32_t color,
                 unsigned share) {
    eachInside(canvas, corners,
               [=](std::uint32_t& pixel) { pixel = blended(pixel, color, share); });
}

void fillPolygon(const Canvas& canvas, std::span<const Place> corners, std::uint32_t value) {
    eachInside(canvas, corners, [=](std::uint32_t& pixel) { pixel = value; });
}

} // namespace polyfab
