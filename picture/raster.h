// SPDX-License-Identifier: GPL-3.0-or-later
// Lines drawn pixel by pixel into a rectangle of a bitmap.
//
// A line from a to b takes n = max(|dx|, |dy|) steps along its longer direction; after step i it
// has moved floor((2*i*m + n) / (2*n)) pixels along the shorter one, m = min(|dx|, |dy|)
// (Bresenham's line). Clipping leaves out pixels and never changes one.
//
// Dashes belong to the canvas and not to the line: a pattern tells which columns (rows, if the line
// is steep) are drawn. So a chain of short lines is as clearly dashed as one long line.
#pragma once

#include <bit>
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

/// How a line is drawn.
struct Stroke {
    static constexpr std::uint32_t solid = 0xFFFFFFFF;

    std::uint32_t color;
    int width = 1; ///< so many lines side by side; of an even number one more above or to the left
    /// Bit i: whether the columns (rows) whose number is i modulo 32 are drawn. The first pixel of
    /// a line always is, so that nothing vanishes between two dashes.
    std::uint32_t pattern = solid;

    bool draws(int place) const { return (pattern >> (place & 31) & 1) != 0; }
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

    /// Calls put(pixel) for `steps` + 1 pixels, the first one at `pixel`.
    template <typename Int, typename Put>
    void walk(std::uint32_t* pixel, Int steps, Put put) const {
        Int sum = static_cast<Int>(error);
        const Int up = static_cast<Int>(gain);
        const Int turn = static_cast<Int>(full);
        put(pixel);
        while (steps-- > 0) {
            sum += up;
            pixel += along;
            if (sum >= turn) {
                sum -= turn;
                pixel += across;
            }
            put(pixel);
        }
    }

    /// Draws `steps` + 1 pixels, the first one at `pixel` in column (row) `place`; `back` when the
    /// line runs to lower ones.
    template <typename Int>
    void draw(std::uint32_t* pixel, Int steps, const Stroke& stroke, int place, bool back) const {
        const std::uint32_t color = stroke.color;
        if (stroke.pattern == Stroke::solid) {
            walk(pixel, steps, [color](std::uint32_t* p) { *p = color; });
            return;
        }
        std::uint32_t bits = std::rotr(stroke.pattern, place & 31);
        const int turn = back ? -1 : 1;
        walk(pixel, steps, [color, turn, &bits](std::uint32_t* p) {
            if ((bits & 1) != 0) *p = color;
            bits = std::rotr(bits, turn);
        });
    }
};

/// Draws a line of width 1 whose ends both lie on the canvas; without `dashed` a solid one,
/// whatever the pattern.
template <bool dashed>
void drawInside(const Canvas& canvas, int x0, int y0, int x1, int y1, const Stroke& stroke) {
    const int dx = x1 - x0;
    const int dy = y1 - y0;
    const std::uint32_t color = stroke.color;
    std::uint32_t* const start = canvas.pixels + y0 * canvas.stride + x0;
    *start = color;
    // Most edges of a fine mesh are no longer than a pixel.
    if (static_cast<unsigned>(dx + 1) <= 2 && static_cast<unsigned>(dy + 1) <= 2) {
        if (!dashed || stroke.draws(dx != 0 ? x1 : y1)) start[dy * canvas.stride + dx] = color;
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
    if constexpr (dashed) {
        run.draw(start, n, stroke, flat ? x0 : y0, flat ? dx < 0 : dy < 0);
    } else {
        run.walk(start, n, [color](std::uint32_t* p) { *p = color; });
    }
}

/// Draws the pixels on the canvas of a line between any positions within `lineReach`.
void drawClipped(const Canvas& canvas, int x0, int y0, int x1, int y1, const Stroke& stroke);

/// The same between any positions at all: what lies beyond `lineReach` is cut off first, the rest
/// rounded to whole pixels. A line with an end that is not a number or beyond 1e300 is not drawn.
void drawLine(const Canvas& canvas, double x0, double y0, double x1, double y1,
              const Stroke& stroke);

} // namespace polyfab
