// SPDX-License-Identifier: GPL-3.0-or-later
// Equal records as one: a hash table over what is appended to an array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace polyfab {

/// Mixes whole numbers into a hash. The factor is odd and otherwise arbitrary.
inline std::uint64_t mixed(std::initializer_list<std::uint64_t> values) {
    std::uint64_t hash = 0;
    for (const std::uint64_t value : values) {
        hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32; // round numbers differ in their high bits only
    }
    return hash;
}

/// Finds or appends records of `items`, of which those that were there before the table do not
/// count. T has an operator== and a function hashOf(const T&) that fits it. Open addressing with
/// linear probing; amortised constant time. std::bad_alloc when there is no memory.
template <typename T>
class UniqueTable {
  public:
    explicit UniqueTable(std::vector<T>& array)
        : items(array), first(array.size()), slots(64, empty) {}

    std::int32_t findOrAdd(const T& item) {
        if (2 * (items.size() - first) >= slots.size()) grow();
        std::int32_t& slot = slots[slotOf(item)];
        if (slot == empty) {
            slot = static_cast<std::int32_t>(items.size());
            items.push_back(item);
        }
        return slot;
    }

  private:
    static constexpr std::int32_t empty = -1;

    std::size_t slotOf(const T& item) const {
        const std::size_t mask = slots.size() - 1;
        std::size_t slot = hashOf(item) & mask;
        while (slots[slot] != empty && !(items[static_cast<std::size_t>(slots[slot])] == item)) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    void grow() {
        slots.assign(4 * slots.size(), empty);
        for (std::size_t i = first; i < items.size(); ++i) {
            slots[slotOf(items[i])] = static_cast<std::int32_t>(i);
        }
    }

    std::vector<T>& items;
    std::size_t first;
    std::vector<std::int32_t> slots; ///< indices of items; a power of two, half of them empty
};

} // namespace polyfab
