// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace polyfab {

/// A priority queue that sorts as finely as four thousandths of a cost: what costs about the same
/// lies in one bucket and comes out in the order in which it went in. Both take constant time,
/// where a heap of millions waits for memory at every level. May throw std::bad_alloc.
template <typename T>
class BucketQueue {
  public:
    BucketQueue() : buckets(count) {}

    /// The cost is not below zero.
    void push(float cost, const T& item) {
        const std::size_t number = std::bit_cast<std::uint32_t>(cost) >> 15;
        buckets[number].items.push_back(item);
        filled[number / 64] |= std::uint64_t{1} << number % 64;
        if (number / 64 < lowest) lowest = number / 64;
    }

    /// Takes out what costs the least; false when there is nothing.
    [[nodiscard]] bool pop(T& item) {
        while (lowest < filled.size() && filled[lowest] == 0) ++lowest;
        if (lowest == filled.size()) return false;
        const auto bit = static_cast<std::size_t>(std::countr_zero(filled[lowest]));
        Bucket& bucket = buckets[64 * lowest + bit];
        item = bucket.items[bucket.first++];
        if (bucket.first == bucket.items.size()) {
            bucket = {};
            filled[lowest] &= ~(std::uint64_t{1} << bit);
        }
        return true;
    }

  private:
    static constexpr std::size_t count = 1 << 16; ///< sign and eight bits of the fraction are left
    struct Bucket {
        std::vector<T> items;
        std::size_t first = 0; ///< those before have been taken out
    };
    std::vector<Bucket> buckets;
    std::array<std::uint64_t, count / 64> filled{}; ///< a bit a bucket
    std::size_t lowest = count / 64;                ///< no word before has a bit
};

} // namespace polyfab
