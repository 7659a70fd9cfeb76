// SPDX-License-Identifier: GPL-3.0-or-later
// Corners of a polygon by where they lie, however close together they stand in places.
#pragma once

#include "geometry/orientation.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

/// The least box around some points.
struct Bounds {
    static constexpr double none = INFINITY;
    double left = none, right = -none, low = none, high = -none;

    void add(const Vec2& p);
};

/// Some of the corners of a polygon, which must outlive it; none at first.
class CornerTree {
  public:
    explicit CornerTree(std::span<const Vec2> corners);
    void add(std::int32_t corner);
    void remove(std::int32_t corner);

    /// One that lies in the triangle, which runs anticlockwise, or on the side from `c` to `a`, but
    /// on none of its corners; -1: none does. To `looks` is added how many boxes were looked at.
    [[nodiscard]] std::int32_t findIn(const Vec2& a, const Vec2& b, const Vec2& c,
                                      std::int64_t& looks) const;

  private:
    struct Triangle {
        [[nodiscard]] bool isCorner(const Vec2& p) const { return p == a || p == b || p == c; }
        [[nodiscard]] bool misses(const Bounds& other) const;
        [[nodiscard]] bool holds(const Vec2& p) const;

        const Vec2 &a, &b, &c;
        Bounds box;
    };
    /// The root is number 1, the halves of node k are 2k and 2k + 1.
    struct Node {
        Bounds box;
        std::int32_t first = 0, end = 0; ///< its corners in the order
        std::int32_t held = 0;           ///< how many of them are in the tree
    };
    void build(std::size_t node, std::int32_t first, std::int32_t end);
    void count(std::int32_t corner, int change);
    [[nodiscard]] std::int32_t findIn(std::size_t node, const Triangle& triangle,
                                      std::int64_t& looks) const;
    [[nodiscard]] const Vec2& at(std::int32_t corner) const {
        return polygon[static_cast<std::size_t>(corner)];
    }

    std::span<const Vec2> polygon;
    std::vector<std::int32_t> order;
    std::vector<Node> nodes;
    std::vector<std::size_t> leafOf;
    std::vector<char> isHeld;
};

} // namespace polyfab
