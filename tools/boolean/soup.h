// SPDX-License-Identifier: GPL-3.0-or-later
// The selected faces as triangles between places: points at one position are one place.
#pragma once

#include "mesh/mesh.h"
#include "tools/boolean/effort.h"
#include "tools/boolean/exact.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace polyfab::boolean {

/// The element of this number.
template <typename List>
[[nodiscard]] auto& nth(List& list, std::int32_t number) {
    return list[static_cast<std::size_t>(number)];
}
template <typename T>
[[nodiscard]] std::int32_t sizeOf(const std::vector<T>& list) {
    return static_cast<std::int32_t>(list.size());
}

/// Sets that grow together; each has a number of its own.
class Sets {
  public:
    explicit Sets(std::size_t count) : into(count) { std::iota(into.begin(), into.end(), 0); }
    std::int32_t find(std::int32_t a) {
        while (nth(into, a) != a) a = nth(into, a) = nth(into, nth(into, a));
        return a;
    }
    void join(std::int32_t a, std::int32_t b) {
        a = find(a);
        b = find(b);
        nth(into, std::max(a, b)) = std::min(a, b);
    }

  private:
    std::vector<std::int32_t> into;
};

/// Takes out of a ring what makes no side or a spike: corners that are the same as their neighbour,
/// and ways to a corner and back.
template <typename Corner, typename Same>
void dropSpikes(std::vector<Corner>& ring, Same same) {
    std::vector<Corner> kept;
    for (const Corner& corner : ring) {
        const std::size_t n = kept.size();
        if (n > 0 && same(kept[n - 1], corner)) continue;
        n > 1 && same(kept[n - 2], corner) ? kept.pop_back() : kept.push_back(corner);
    }
    std::size_t first = 0, end = kept.size();
    while (end - first > 1) {
        const bool isLong = end - first > 2;
        if (same(kept[first], kept[end - 1]) || (isLong && same(kept[first], kept[end - 2]))) {
            --end;
        } else if (isLong && same(kept[first + 1], kept[end - 1])) {
            ++first;
        } else {
            break;
        }
    }
    ring.assign(kept.begin() + static_cast<std::ptrdiff_t>(first),
                kept.begin() + static_cast<std::ptrdiff_t>(end));
}

/// A pair of numbers as one.
[[nodiscard]] inline std::int64_t keyOf(std::int32_t from, std::int32_t to) {
    return std::int64_t{from} << 32 | static_cast<std::uint32_t>(to);
}

struct Triangle {
    Ids at;             ///< places
    std::int32_t piece; ///< number of its polygon
    std::int8_t axis;   ///< along which it is seen well; -1: it has no area
    bool isTurned;      ///< it runs clockwise seen that way
    std::uint8_t inner; ///< bit k: the side from corner k runs through the polygon
};

struct Polygon {
    std::int32_t face;  ///< in the mesh
    std::int32_t first; ///< of its triangles
    std::int32_t n;
};

struct Soup {
    /// By which places are larger than the positions in the mesh: 1, or a power of two where
    /// products of those would be too large or too small for a double.
    double scale = 1;
    std::vector<Vec3> places;
    std::vector<std::int32_t> placeOf; ///< of each point of the mesh; -1: on no such face
    std::vector<std::int32_t> pointAt; ///< of each place: the lowest point there
    std::vector<Triangle> triangles;
    std::vector<Polygon> polygons;
    std::int64_t notFinite = 0; ///< selected faces that are left out

    [[nodiscard]] const Vec3& corner(const Triangle& t, int k) const {
        return nth(places, t.at[static_cast<std::size_t>(k)]);
    }
};

/// The live selected faces of at least three corners, all of them finite, cut without new points.
/// Where sides cross each other that fails, and they become fans.
[[nodiscard]] Soup makeSoup(const Mesh& mesh, Effort& effort);

} // namespace polyfab::boolean
