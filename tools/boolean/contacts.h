// SPDX-License-Identifier: GPL-3.0-or-later
// Where triangles meet, told by what meets there: an edge and a triangle, two edges, or a place
// that is a corner. Nothing is computed yet but signs.
#pragma once

#include "tools/boolean/boxes.h"
#include "tools/boolean/soup.h"

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace polyfab::boolean {

/// What a point is found to be. A place: {place, place, -1, -1}. Where an edge passes through a
/// triangle: {low, high, triangle, -1}. Where edges cross: {low, high, low, high}, the lower edge
/// first.
using Meeting = std::array<std::int32_t, 4>;

/// A meeting that lies on the edge between these two places.
struct OnEdge {
    std::int32_t low, high;
    std::int32_t meeting;
    auto operator<=>(const OnEdge&) const = default;
};

/// The way through a triangle on which another one meets it: between two meetings, or one and -1.
struct Trace {
    std::int32_t triangle;
    std::int32_t from, to;
};

/// How a meeting that is no place is worked out: the line through two places and the plane of
/// three, or with an axis 0 to 2 two lines of one plane that is not parallel to it.
struct Recipe {
    IdPair line;
    Ids plane;
    int axis = -1;
};

struct Contacts {
    std::vector<Meeting> meetings;
    std::vector<Recipe> recipes;   ///< of the meetings
    std::vector<std::uint8_t> met; ///< of each triangle: whether another one touches it anywhere
    std::vector<OnEdge> onEdges;   ///< sorted, each once
    std::vector<Trace> traces;     ///< not along edges of the triangle, and no mere points on them
    std::vector<IdPair> overlaps;  ///< triangles of one plane that cover each other in part
    /// Triangles of different polygons that share an edge which runs through one of the polygons.
    std::vector<IdPair> onInner;
};

/// All contacts of triangles of different polygons, but that neighbours share edges and corners.
/// False when the user wants it to stop.
[[nodiscard]] bool findContacts(const Soup& soup, const BoxTree& tree, Contacts& found);

/// A tree of the triangles that have an area.
[[nodiscard]] BoxTree treeOf(const Soup& soup);

} // namespace polyfab::boolean
