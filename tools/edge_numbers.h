// SPDX-License-Identifier: GPL-3.0-or-later
// Numbers for the edges of a mesh, for tools that look at edges and must leave the mesh alone until
// they are through (the edge tables of the mesh mark its corners).
#pragma once

#include "mesh/faces.h"
#include "mesh/table.h"

#include <cstdint>

namespace polyfab {

class EdgeNumbers {
  public:
    /// Numbers the edges of the live faces from 0 on, in the order of their lower points. Time is
    /// linear in points and corners.
    explicit EdgeNumbers(const Mesh& mesh);
    /// False when there was no memory, after a message box.
    explicit operator bool() const { return built; }

    [[nodiscard]] std::int32_t count() const { return edges; }
    /// Of the edge that starts at this corner of the mesh; -1 when both ends are one point or the
    /// corner is that of no live face.
    [[nodiscard]] std::int32_t at(std::int64_t corner) const { return edgeOf[corner]; }

  private:
    Table<std::int32_t> edgeOf;
    std::int32_t edges = 0;
    bool built = false;
};

/// Calls use(face, place, from, to) with the points of all sides of live faces that have two ends.
template <typename Use>
void eachSideWithPoints(const Mesh& mesh, Use use) {
    for (const Face& face : liveFaces(mesh)) {
        if (face.n < 2) continue;
        const std::int32_t first = pointOf(mesh, face.q[0]);
        std::int32_t from = first;
        for (std::int32_t k = 0; k < face.n; ++k) {
            const std::int32_t to = k + 1 == face.n ? first : pointOf(mesh, face.q[k + 1]);
            if (from != to) use(face, k, from, to);
            from = to;
        }
    }
}

} // namespace polyfab
