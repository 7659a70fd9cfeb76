// SPDX-License-Identifier: GPL-3.0-or-later
// The faces that meet others cut into triangles that meet only in whole edges and corners.
#pragma once

#include "mesh/hash_slots.h"
#include "tools/boolean/contacts.h"
#include "tools/boolean/exact.h"
#include "tools/boolean/soup.h"

#include <cstdint>
#include <span>
#include <vector>

namespace polyfab::boolean {

/// A part of a triangle. Cells of overlapping triangles that cover each other exactly are one
/// sheet.
struct Cell {
    Ids at;                ///< points, in the order in which its triangle runs
    std::int32_t triangle; ///< that it is part of
    std::int32_t sheet;
    bool turned; ///< it runs against the first cell of its sheet
};

/// The points on edges between places, in order from the lower place on.
class CutEdges {
  public:
    CutEdges(const Contacts& contacts, const std::vector<std::int32_t>& idOf,
             const ExactPoints& points);
    /// None, or those on the edge from its lower place on.
    [[nodiscard]] std::span<const std::int32_t> on(std::int32_t low, std::int32_t high) const;
    /// Whether some edge at this place has any.
    [[nodiscard]] bool startsAt(std::int32_t place) const;

  private:
    struct Edge {
        std::int32_t low, high;
        std::size_t first, n;
    };
    [[nodiscard]] std::int32_t& slotOf(std::int32_t low, std::int32_t high) const;

    std::vector<std::int32_t> ids;
    std::vector<Edge> edges;
    std::vector<bool> ends; ///< places
    mutable HashSlots slots;
};

struct Arrangement {
    std::vector<Cell> cells;           ///< in the order of the polygons
    std::vector<std::int32_t> firstOf; ///< of each polygon and behind the last: its first cell
    std::int32_t sheets = 0;
};

/// Cells of all polygons that others meet, or of all there are. False when the user wants it to
/// stop. May throw std::exception.
[[nodiscard]] bool arrange(const Soup& soup, const Contacts& contacts, const CutEdges& cuts,
                           const std::vector<std::int32_t>& idOf, bool allPolygons,
                           ExactPoints& points, Arrangement& result);

/// The points of all meetings; corners of what meets are entered first, so that they are found.
[[nodiscard]] std::vector<std::int32_t> resolve(const Soup& soup, const Contacts& contacts,
                                                ExactPoints& points);

/// Triangles that fill an outline which runs anticlockwise seen along this axis, by places in it.
/// None when it passes a position twice or crosses itself.
[[nodiscard]] std::vector<Ids> fillOutline(std::span<const Vec3> outline, int axis);

} // namespace polyfab::boolean
