// SPDX-License-Identifier: GPL-3.0-or-later
// The edges that the wireframe draws: every pair of points that follow each other in a live face,
// once, however many faces share it.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <vector>

namespace polyfab {

struct DrawnEdges {
    static constexpr std::uint32_t selectedBit = 0x80000000;

    /// The edges of point i as their lower point are other[first[i]] up to other[first[i + 1]].
    std::vector<std::uint32_t> first;
    /// Index of the higher point, with `selectedBit` when a selected face uses the edge.
    std::vector<std::uint32_t> other;
    std::uint32_t selected = 0; ///< edges with the bit
};

/// Lists the edges of the mesh, in time linear in its points and corners. A face of one corner
/// gives an edge from the point to itself. Corners without a sound point have no edges. May throw
/// std::bad_alloc.
void listEdges(const Mesh& mesh, DrawnEdges& list);

} // namespace polyfab
