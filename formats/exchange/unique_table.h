// SPDX-License-Identifier: GPL-3.0-or-later
// Equal records as one: a hash table over what is appended to an array.
#pragma once

#include "mesh/hash_slots.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace polyfab {

/// Finds or appends records of `items`, of which those that were there before the table do not
/// count. T has an operator== and a function hashOf(const T&) that fits it. Amortised constant
/// time. std::bad_alloc when there is no memory.
template <typename T>
class UniqueTable {
  public:
    explicit UniqueTable(std::vector<T>& array) : items(array), first(array.size()) {
        slots.reset(64);
    }

    std::int32_t findOrAdd(const T& item) {
        if (slots.isFullWith(items.size() - first)) grow();
        std::int32_t& slot = slotOf(item);
        if (slot == HashSlots::empty) {
            slot = static_cast<std::int32_t>(items.size());
            items.push_back(item);
        }
        return slot;
    }

  private:
    std::int32_t& slotOf(const T& item) {
        return slots.find(hashOf(item), [&](std::int32_t i) {
            return items[static_cast<std::size_t>(i)] == item;
        });
    }

    void grow() {
        slots.reset(4 * slots.size());
        for (std::size_t i = first; i < items.size(); ++i) {
            slotOf(items[i]) = static_cast<std::int32_t>(i);
        }
    }

    std::vector<T>& items;
    std::size_t first;
    HashSlots slots; ///< indices of items
};

} // namespace polyfab
