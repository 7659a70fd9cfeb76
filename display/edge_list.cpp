// SPDX-License-Identifier: GPL-3.0-or-later
// Unique edges by counting: the edges of all faces are put into buckets by their lower point, then
// each bucket is thinned out in place with one table of where a higher point was met last.
#include "display/edge_list.h"

#include <algorithm>

namespace polyfab {
namespace {

/// Number of the element at `address` in its array, or a huge number for none of it (null, say).
template <typename T>
std::size_t elementAt(const T* array, const T* address) {
    return (reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(array))
           / sizeof(T);
}

bool soundFace(const Mesh& mesh, const Face& face) {
    if (face.q == nullptr || face.n <= 0) return false;
    const std::size_t start = elementAt(mesh.corners, static_cast<const FaceCorner*>(face.q));
    const auto corners = static_cast<std::size_t>(mesh.nq);
    return start < corners && static_cast<std::size_t>(face.n) <= corners - start;
}

/// Calls use(lower point, higher point, selected) for each side of each live face.
template <typename Use>
void forEachSide(const Mesh& mesh, Use use) {
    const auto points = static_cast<std::size_t>(mesh.np);
    for (int i = 0; i < mesh.nf; ++i) {
        const Face& face = mesh.faces[i];
        if (!soundFace(mesh, face)) continue;
        std::size_t from = elementAt<Point>(mesh.points, face.q[face.n - 1].p);
        for (int k = 0; k < face.n; ++k) {
            const std::size_t to = elementAt<Point>(mesh.points, face.q[k].p);
            if (from < points && to < points) {
                use(std::min(from, to), std::max(from, to), face.selected != 0);
            }
            from = to;
        }
    }
}

/// Leaves each edge once in its bucket, the buckets moved together; selected if one of them was.
void dropRepeats(DrawnEdges& list) {
    const std::size_t points = list.first.size() - 1;
    // A place at or after the present bucket's start can only come from this bucket.
    std::vector<std::uint32_t> place(points, 0);
    std::uint32_t kept = 0;
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < points; ++i) {
        const std::uint32_t start = kept;
        const std::uint32_t end = list.first[i + 1];
        for (; next < end; ++next) {
            const std::uint32_t edge = list.other[next];
            const std::uint32_t higher = edge & ~DrawnEdges::selectedBit;
            // Places count from 1, so that the cleared table holds none.
            if (place[higher] > start) {
                list.other[place[higher] - 1] |= edge & DrawnEdges::selectedBit;
            } else {
                list.other[kept] = edge;
                place[higher] = ++kept;
            }
        }
        list.first[i + 1] = kept;
    }
    list.other.resize(kept);
}

} // namespace

void listEdges(const Mesh& mesh, DrawnEdges& list) {
    const auto points = static_cast<std::size_t>(mesh.np);
    list.first.assign(points + 1, 0);
    forEachSide(mesh, [&](std::size_t low, std::size_t, bool) { ++list.first[low]; });
    std::uint32_t sum = 0;
    for (std::uint32_t& entry : list.first) {
        sum += entry;
        entry = sum;
    }
    // Filled from the back, each bucket's end becomes its start.
    list.other.resize(sum);
    forEachSide(mesh, [&](std::size_t low, std::size_t high, bool selected) {
        list.other[--list.first[low]] =
            static_cast<std::uint32_t>(high) | (selected ? DrawnEdges::selectedBit : 0);
    });
    dropRepeats(list);
    list.selected = static_cast<std::uint32_t>(
        std::count_if(list.other.begin(), list.other.end(),
                      [](std::uint32_t edge) { return (edge & DrawnEdges::selectedBit) != 0; }));
}

} // namespace polyfab
