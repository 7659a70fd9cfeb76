// SPDX-License-Identifier: GPL-3.0-or-later
// Finding the boxes that meet: a tree over boxes in the order of a curve that fills space, which
// keeps neighbours together.
#pragma once

#include "geometry/vec3.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace polyfab::boolean {

/// Bounds in single numbers, rounded outwards. Empty as made.
struct Box {
    std::array<float, 3> low{infinite, infinite, infinite};
    std::array<float, 3> high{-infinite, -infinite, -infinite};

    static constexpr float infinite = __builtin_inff();

    void add(const Vec3& at);
    void add(const Box& other);
    [[nodiscard]] bool meets(const Box& other) const {
        return low[0] <= other.high[0] && other.low[0] <= high[0] && low[1] <= other.high[1]
               && other.low[1] <= high[1] && low[2] <= other.high[2] && other.low[2] <= high[2];
    }
};

class BoxTree {
  public:
    /// Of boxes that are told apart by their places in the list; empty ones meet none.
    explicit BoxTree(const std::vector<Box>& boxes);

    /// Calls use(a, b) for all pairs that meet, each once; it stops when that gives false.
    template <typename Use>
    void eachPair(Use use) const {
        bool goesOn = true;
        const auto visit = [&](std::int32_t a, std::int32_t b) { goesOn = goesOn && use(a, b); };
        std::vector<std::array<std::size_t, 2>> waiting{{1, 1}};
        while (!waiting.empty() && goesOn) {
            const auto [a, b] = waiting.back();
            waiting.pop_back();
            if (!nodes[a].meets(nodes[b])) continue;
            if (a >= firstLeaf) {
                eachInLeaves(a, b, visit);
            } else if (a == b) {
                waiting.insert(waiting.end(),
                               {{2 * a, 2 * a}, {2 * a + 1, 2 * a + 1}, {2 * a, 2 * a + 1}});
            } else {
                waiting.insert(waiting.end(), {{2 * a, 2 * b},
                                               {2 * a, 2 * b + 1},
                                               {2 * a + 1, 2 * b},
                                               {2 * a + 1, 2 * b + 1}});
            }
        }
    }

    /// Calls use(a) for all that meet this one.
    template <typename Use>
    void eachMeeting(const Box& box, Use use) const {
        std::vector<std::size_t> waiting{1};
        while (!waiting.empty()) {
            const std::size_t node = waiting.back();
            waiting.pop_back();
            if (!nodes[node].meets(box)) continue;
            if (node < firstLeaf) {
                waiting.insert(waiting.end(), {2 * node, 2 * node + 1});
                continue;
            }
            for (std::size_t i = start(node); i < start(node + 1); ++i) {
                if (sorted[i].meets(box)) use(order[i]);
            }
        }
    }

  private:
    static constexpr std::size_t inLeaf = 4;

    [[nodiscard]] std::size_t start(std::size_t leaf) const {
        return std::min((leaf - firstLeaf) * inLeaf, sorted.size());
    }

    template <typename Visit>
    void eachInLeaves(std::size_t a, std::size_t b, Visit visit) const {
        for (std::size_t i = start(a); i < start(a + 1); ++i) {
            for (std::size_t k = a == b ? i + 1 : start(b); k < start(b + 1); ++k) {
                if (sorted[i].meets(sorted[k])) visit(order[i], order[k]);
            }
        }
    }

    std::vector<std::int32_t> order; ///< boxes along the curve
    std::vector<Box> sorted;         ///< the same
    std::vector<Box> nodes;          ///< 1 is the root, 2i and 2i + 1 are the children of i
    std::size_t firstLeaf = 1;
};

} // namespace polyfab::boolean
