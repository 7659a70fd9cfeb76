// SPDX-License-Identifier: GPL-3.0-or-later
// Which of many triangles is seen at each pixel of a rectangle, and how near it is there: a depth
// buffer in tiles, that threads fill side by side.
//
// Corners lie on 256ths of a pixel and all about coverage is worked out in whole numbers: a pixel
// belongs to a triangle when its middle lies inside, or on a side that is a top or a left one. So
// of triangles that share an edge each pixel belongs to exactly one. Where two are equally near,
// the one of the lower face is seen. So neither the order of the triangles nor the number of
// threads changes a pixel.
#pragma once

#include "picture/slope.h"
#include "picture/texture.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace polyfab {

/// A corner in 256ths of a pixel, z away from the viewer. What 32 bits cannot hold is at
/// plus or minus `farthest`; of a corner that is not finite x is `nowhere`.
struct RasterPoint {
    static constexpr int one = 256; ///< a pixel
    /// Farther out triangles are clipped; within it the edge functions fit into 64 bits with ease.
    static constexpr std::int32_t reach = 32768 * one;
    static constexpr std::int32_t farthest = std::numeric_limits<std::int32_t>::max();
    static constexpr std::int32_t nowhere = std::numeric_limits<std::int32_t>::min();
    std::int32_t x, y, z;

    /// What is clipped.
    bool isFar() const { return std::max(std::abs(x), std::abs(y)) > reach; }
    /// What is held too coarsely to work with.
    bool isCoarse() const { return isFar() || std::abs(z) == farthest; }
};

/// The nearest 256th of a pixel.
[[nodiscard]] inline std::int32_t rasterPlace(double pixels) {
    constexpr double bias = 1LL << 32; // above 0 casts round down
    constexpr double farthest = RasterPoint::farthest;
    const double place = pixels * RasterPoint::one + 0.5;
    const double kept = place < -farthest ? -farthest : place > farthest ? farthest : place;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(kept + bias) - (1LL << 32));
}

[[nodiscard]] inline RasterPoint rasterPoint(double x, double y, double z) {
    constexpr double most = 1e300; // squares of more are beyond all figures
    const auto usable = [](double value) { return std::abs(value) <= most; };
    if (!usable(x) || !usable(y) || !usable(z)) return {RasterPoint::nowhere, 0, 0};
    return {rasterPlace(x), rasterPlace(y), rasterPlace(z)};
}

/// Its corners stand in an order that does not depend on the face's, so that a face and its double
/// have the same depth to the last digit.
struct RasterTriangle {
    std::uint32_t corner[3]; ///< numbers of points
    std::uint32_t face : 31;
    std::uint32_t turned : 1; ///< that order runs against the face's
};

struct TriangleSet {
    std::span<const RasterPoint> points;
    std::span<const RasterTriangle> triangles;
    /// Where a corner is that `points` holds too coarsely.
    std::function<ScreenCorner(std::uint32_t point)> exact;
    /// Lays the picture of a triangle that may have holes. False when it has none. Empty: no one
    /// has any.
    std::function<bool(std::uint32_t triangle, LaidTexture& to)> layWithHoles{};
    bool frontOnly = false; ///< those seen clockwise are left out

    /// The corners of a triangle in its own order.
    void corners(std::uint32_t triangle, ScreenCorner (&to)[3]) const {
        const auto& corner = triangles[triangle].corner;
        bool coarse = false;
        for (int k = 0; k < 3; ++k) {
            constexpr double pixel = 1.0 / RasterPoint::one;
            const RasterPoint& at = points[corner[k]];
            to[k] = {at.x * pixel, at.y * pixel, at.z * pixel};
            coarse |= at.isCoarse();
        }
        if (!coarse) return;
        for (int k = 0; k < 3; ++k) to[k] = exact(corner[k]);
    }
};

/// What is seen at a pixel: a triangle, from its front (anticlockwise) or from behind.
struct Seen {
    static constexpr std::uint32_t nothing = std::numeric_limits<std::uint32_t>::max();
    static constexpr std::uint32_t behind = 1;
    static std::uint32_t triangle(std::uint32_t code) { return code >> 1; }
};

struct Tile {
    static constexpr int width = 64, height = 32;
    float depth[width * height]; ///< pixels
    std::uint32_t seen[width * height];
};

class DepthTiles {
  public:
    /// Shows the triangles in a rectangle of this size and nothing else. May throw std::bad_alloc.
    void draw(int width, int height, const TriangleSet& set);

    int width() const { return wide; }
    int height() const { return high; }
    int columns() const { return tileColumns; }
    int rows() const { return tileRows; }
    const Tile& tile(int column, int row) const { return tiles[number(column, row)]; }
    /// Of a pixel in the rectangle.
    std::uint32_t seen(int x, int y) const { return tileAt(x, y).seen[place(x, y)]; }
    float depth(int x, int y) const { return tileAt(x, y).depth[place(x, y)]; }

  private:
    friend class TileHolder;

    std::size_t number(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(tileColumns)
               + static_cast<std::size_t>(column);
    }
    const Tile& tileAt(int x, int y) const { return tile(x / Tile::width, y / Tile::height); }
    static int place(int x, int y) { return y % Tile::height * Tile::width + x % Tile::width; }
    void resize(int width, int height);
    void clear();

    int wide = 0, high = 0, tileColumns = 0, tileRows = 0;
    std::vector<Tile> tiles;
    std::unique_ptr<std::atomic_flag[]> held; ///< per tile, whether a worker draws into it
};

} // namespace polyfab
