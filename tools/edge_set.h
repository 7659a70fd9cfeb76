// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mesh/hash_slots.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace polyfab {

/// A set of edges, found by the numbers of their ends in either order. May throw std::bad_alloc.
class EdgeSet {
  public:
    [[nodiscard]] bool has(std::int32_t a, std::int32_t b) {
        return !edges.empty() && slotOf(a, b) != HashSlots::empty;
    }
    void add(std::int32_t a, std::int32_t b) {
        if (slots.isFullWith(edges.size() + 1)) {
            slots.reset(std::max<std::size_t>(1024, 4 * edges.size()));
            for (std::size_t i = 0; i < edges.size(); ++i) {
                slotOf(edges[i].first, edges[i].second) = static_cast<std::int32_t>(i);
            }
        }
        std::int32_t& slot = slotOf(a, b);
        if (slot != HashSlots::empty) return;
        slot = static_cast<std::int32_t>(edges.size());
        edges.emplace_back(std::minmax(a, b));
    }

  private:
    std::int32_t& slotOf(std::int32_t a, std::int32_t b) {
        const std::pair<std::int32_t, std::int32_t> wanted = std::minmax(a, b);
        return slots.find(hashOfNumbers(wanted.first, wanted.second), [&](std::int32_t i) {
            return edges[static_cast<std::size_t>(i)] == wanted;
        });
    }

    HashSlots slots;
    std::vector<std::pair<std::int32_t, std::int32_t>> edges;
};

} // namespace polyfab
