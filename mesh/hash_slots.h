// SPDX-License-Identifier: GPL-3.0-or-later
// Finding equal elements: a hash of numbers, and a hash table of elements that are kept elsewhere.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace polyfab {

[[nodiscard]] inline std::uint64_t hashBits(std::integral auto value) {
    return static_cast<std::uint64_t>(value);
}
/// Equal for 0 and -0, which compare equal too.
[[nodiscard]] inline std::uint64_t hashBits(double value) {
    return std::bit_cast<std::uint64_t>(value + 0.0);
}

/// A hash with one more number in it. The factor is odd and otherwise arbitrary.
[[nodiscard]] inline std::uint64_t mixedInto(std::uint64_t hash, auto value) {
    return (hash ^ (hash >> 32) ^ hashBits(value)) * 0x9E3779B97F4A7C15U;
}

/// A hash of all these numbers, to be used from either end.
[[nodiscard]] std::uint64_t hashOfNumbers(auto... values) {
    std::uint64_t hash = 0;
    ((hash = mixedInto(hash, values)), ...);
    hash = mixedInto(hash, 0); // round numbers differ in their high bits only
    return hash ^ (hash >> 32);
}

/// The numbers of elements by the hashes of what is in them: open addressing with linear probing.
/// std::bad_alloc when there is no memory.
class HashSlots {
  public:
    static constexpr std::int32_t empty = -1;

    /// Empties all slots and makes them at least so many.
    void reset(std::size_t least) { slots.assign(std::bit_ceil(least), empty); }

    [[nodiscard]] std::size_t size() const { return slots.size(); }

    /// Whether so many elements leave less than half of the slots empty: time for a larger reset.
    [[nodiscard]] bool isFullWith(std::size_t elements) const {
        return 2 * elements >= slots.size();
    }

    /// The slot of the element of this hash for which isSame(number) holds, or the empty one where
    /// its number has to be entered.
    template <typename IsSame>
    [[nodiscard]] std::int32_t& find(std::uint64_t hash, IsSame isSame) {
        const std::size_t mask = slots.size() - 1;
        std::size_t slot = hash & mask;
        while (slots[slot] != empty && !isSame(slots[slot])) slot = (slot + 1) & mask;
        return slots[slot];
    }

    /// Calls for the memory that find will want for this hash some calls later.
    void prepare(std::uint64_t hash) const {
        __builtin_prefetch(&slots[hash & (slots.size() - 1)]);
    }

  private:
    std::vector<std::int32_t> slots; ///< a power of two
};

} // namespace polyfab
