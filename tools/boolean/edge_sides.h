// SPDX-License-Identifier: GPL-3.0-or-later
// Sides of triangles and faces by the edges that they lie on.
#pragma once

#include "tools/boolean/soup.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab::boolean {

struct EdgeSide {
    std::int32_t low, high; ///< ends of the edge
    std::int32_t owner;
    bool upwards; ///< from the lower end to the higher one
};

class EdgeSides {
  public:
    void add(std::int32_t from, std::int32_t to, std::int32_t owner) {
        sides.push_back({std::min(from, to), std::max(from, to), owner, from < to});
    }
    void reserve(std::size_t count) { sides.reserve(count); }

    /// Calls use(sides) for all sides of one edge, edge by edge; within one in the order in which
    /// they were added.
    template <typename Use>
    void each(Use use) {
        sort();
        const std::span<const EdgeSide> all(sides);
        for (std::size_t i = 0, end = 0; i < all.size(); i = end) {
            while (end < all.size() && all[end].low == all[i].low && all[end].high == all[i].high) {
                ++end;
            }
            use(all.subspan(i, end - i));
        }
    }

  private:
    /// A counting sort by the lower ends; what is left to sort at each of them is little.
    void sort();

    std::vector<EdgeSide> sides;
    bool sorted = false;
};

} // namespace polyfab::boolean
