// SPDX-License-Identifier: GPL-3.0-or-later
// The edges that the wireframe draws: every pair of points that follow each other in a live face,
// once, however many faces share it, with what the faces on it make of it.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// Marks of an edge.
namespace edgemark {
inline constexpr std::uint8_t selected = 1; ///< a selected face uses it
inline constexpr std::uint8_t bad = 2;      ///< the `edgeuse` of a corner on it says so
inline constexpr std::uint8_t shared = 4;   ///< more than one side of a face lies on it
inline constexpr std::uint8_t inLeft = 8;   ///< a face that the left pane shows uses it
inline constexpr std::uint8_t inRight = 16; ///< the same for the right pane
} // namespace edgemark

struct DrawnEdges {
    /// The edges of point i as their lower point are those from first[i] up to first[i + 1].
    std::vector<std::uint32_t> first;
    std::vector<std::uint32_t> other; ///< per edge, the index of its higher point
    std::vector<std::uint8_t> marks;  ///< per edge
    std::uint32_t kinds = 0;          ///< bit m: some edge has exactly the marks m
    std::uint32_t most = 0;           ///< edges that have the same lower point

    /// Whether some edge has just the marks `value` of those in `mask`.
    [[nodiscard]] bool has(unsigned mask, unsigned value) const;
};

/// Lists the edges of the mesh, in time linear in its points and corners. A face of one corner
/// gives an edge from the point to itself. Corners without a sound point have no edges. Where faces
/// that face away are hidden, the screen positions must be up to date. May throw std::bad_alloc.
void listEdges(const Mesh& mesh, DrawnEdges& list);

/// Marks anew which edges selected faces use, in a list of the same faces. May throw
/// std::bad_alloc.
void markSelected(const Mesh& mesh, DrawnEdges& list);

/// Whether the face is live and all its corners and their points lie in the arrays of the mesh.
[[nodiscard]] bool isSound(const Mesh& mesh, const Face& face);

} // namespace polyfab
