// SPDX-License-Identifier: GPL-3.0-or-later
// Lines drawn pixel by pixel into a rectangle of a bitmap.
//
// A line from a to b takes n = max(|dx|, |dy|) steps along its longer direction; after step i it
// has moved floor((2*i*m + n) / (2*n)) pixels along the shorter one, m = min(|dx|, |dy|)
// (Bresenham's line). Clipping leaves out pixels and never changes one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace polyfab {

/// Rectangle that is drawn into; positions count from its upper left pixel.
struct Canvas {
    std::uint32_t* pixels; ///< the upper left pixel
    int width;
    int height;
    std::ptrdiff_t stride; ///< pixels from one row to the next
};

/// Positions that drawClipped takes lie within plus and minus this.
inline constexpr int lineReach = 1 << 30;

/// One straight run of pixels, ready to be drawn.
struct LineRun {
    std::ptrdiff_t along;  ///< pixel step of every step
    std::ptrdiff_t across; ///< added to it whenever `error` reaches `full`
    std::int64_t error;    ///< 2*i*m + n, less what was stepped across, at the first pixel
    std::int64_t gain;     ///< 2*m
    std::int64_t full;     ///< 2*n

    /// Draws `steps` + 1 pixels, the first one at `pixel`.
    template <typename Int>
    void draw(std::uint32_t* pixel, Int steps, std::uint32_t color) const {
        Int sum = static_cast<Int>(error);
        const Int up = static_cast<Int>(gain);
        const Int turn = static_cast<Int>(full);
        *pixel = color;
        while (steps-- > 0) {
            sum += up;
            pixel += along;
            if (sum >= turn) {
                sum -= turn;
                pixel += across;
            }
            *pixel = color;
        }
    }
};

/// Draws a line whose ends both lie on the canvas.
inline void drawInside(const Canvas& canvas, int x0, int y0, int x1, int y1, std::uint32_t color) {
    const int dx = x1 - x0;
    const int dy = y1 - y0;
    std::uint32_t* const start = canvas.pixels + y0 * canvas.stride + x0;
    // Most edges of a fine mesh are no longer than a pixel.
    if (static_cast<unsigned>(dx + 1) <= 2 && static_cast<unsigned>(dy + 1) <= 2) {
        *start = color;
        start[dy * canvas.stride + dx] = color;
        return;
    }
    const int width = std::abs(dx);
    const int height = std::abs(dy);
    const std::ptrdiff_t right = dx < 0 ? -1 : 1;
    const std::ptrdiff_t down = dy < 0 ? -canvas.stride : canvas.stride;
    const bool flat = width >= height;
    const int n = flat ? width : height;
    const int m = flat ? height : width;
    const LineRun run{flat ? right : down, flat ? down : right, n, 2 * m, 2 * n};
    run.draw(start, n, color);
}

/// Draws the pixels on the canvas of a line between any positions within `lineReach`.
void drawClipped(const Canvas& canvas, int x0, int y0, int x1, int y1, std::uint32_t color);

/// The same between any positions at all: what lies beyond `lineReach` is cut off first, the rest
/// rounded to whole pixels. A line with an end that is not a number or beyond 1e300 is not drawn.
void drawLine(const Canvas& canvas, double x0, double y0, double x1, double y1,
              std::uint32_t color);

} // namespace polyfab
