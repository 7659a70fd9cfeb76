// SPDX-License-Identifier: GPL-3.0-or-later
// Lines and areas with smooth edges, drawn into a rectangle of a bitmap. All from the positions in
// 256ths of a pixel on is done in whole numbers, so that a picture is the same on every machine.
#pragma once

#include "picture/raster.h"

#include <span>

namespace polyfab {

/// A position on a canvas, in pixels from the middle of its upper left one.
struct Place {
    double x;
    double y;
};

/// The colour by so many 256ths over what the pixel shows.
[[nodiscard]] inline std::uint32_t blended(std::uint32_t under, std::uint32_t over,
                                           unsigned share) {
    constexpr std::uint32_t redBlue = 0x00FF00FF, green = 0x0000FF00;
    const std::uint32_t keep = 256 - share;
    const std::uint32_t rb = ((under & redBlue) * keep + (over & redBlue) * share) >> 8;
    const std::uint32_t g = ((under & green) * keep + (over & green) * share) >> 8;
    return 0xFF000000 | (rb & redBlue) | (g & green);
}

/// Draws the line: in each column (row, if it is steep) that its ends round to or lie between,
/// pixels are covered as far as they lie in a strip as high (wide) as the stroke, around the line.
/// One that runs along the pixels is brought to whole ones, so that it is crisp. Dashes are as in a
/// plain line. A line with an end that is not a number or beyond 1e300 is not drawn.
void drawSmoothLine(const Canvas& canvas, Place from, Place to, const Stroke& stroke);

/// Lays the colour, by so many 256ths, over the pixels whose middles lie in the polygon (by the
/// even-odd rule). One with a corner that is not finite is not drawn.
void tintPolygon(const Canvas& canvas, std::span<const Place> corners, std::uint32_t color,
                 unsigned share);

/// The same pixels get just this value, whatever its top byte is.
void fillPolygon(const Canvas& canvas, std::span<const Place> corners, std::uint32_t value);

} // namespace polyfab
