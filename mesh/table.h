// SPDX-License-Identifier: GPL-3.0-or-later
// A flat temporary table in the tracked store that goes away with its owner.
#pragma once

#include "mesh/store.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace polyfab {

template <typename T>
class Table {
  public:
    /// `count` elements of no particular value. Without memory the table is empty, after a message
    /// box: test it before its first use.
    explicit Table(std::int64_t count) : elements(take(count)) {}
    /// The same with all elements equal to `fill`.
    Table(std::int64_t count, T fill) : Table(count) {
        if (elements != nullptr) std::fill_n(elements, count, fill);
    }
    ~Table() { farfree(&elements); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    explicit operator bool() const { return elements != nullptr; }
    T& operator[](std::int64_t index) { return elements[index]; }
    const T& operator[](std::int64_t index) const { return elements[index]; }

  private:
    static T* take(std::int64_t count) {
        return static_cast<T*>(
            farmalloc(static_cast<std::size_t>(std::max<std::int64_t>(count, 1)) * sizeof(T)));
    }

    T* elements;
};

} // namespace polyfab
