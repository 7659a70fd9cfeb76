// SPDX-License-Identifier: GPL-3.0-or-later
// As for the edge tables of the mesh, sides are sorted by their lower points, so that all sides of
// an edge lie near each other.
#include "tools/edge_numbers.h"

#include "workbench/long_work.h"

#include <algorithm>
#include <utility>

namespace polyfab {

EdgeNumbers::EdgeNumbers(const Mesh& mesh) : edgeOf(mesh.nq, -1) {
    if (!edgeOf) return;
    struct LowSide {
        std::int32_t corner, high;
    };
    Table<LowSide> sides(mesh.nq);
    Table<std::int32_t> end(mesh.np, 0), last(mesh.np, -1);
    if (!sides || !end || !last) return;
    eachSideWithPoints(mesh, [&](const Face&, int, std::int32_t from, std::int32_t to) {
        ++end[std::min(from, to)];
    });
    std::int32_t start = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) end[i] = std::exchange(start, start + end[i]);
    moveProgress();
    eachSideWithPoints(mesh, [&](const Face& face, int k, std::int32_t from, std::int32_t to) {
        const auto [low, high] = std::minmax(from, to);
        sides[end[low]++] = {indexIn(mesh.corners, face.q) + k, high};
    });
    moveProgress();
    // `last` has, for each higher point, the edge that was found last.
    std::int32_t s = 0;
    for (std::int32_t low = 0; low < mesh.np; ++low) {
        for (const std::int32_t first = edges; s < end[low]; ++s) {
            std::int32_t& edge = last[sides[s].high];
            if (edge < first) edge = edges++;
            edgeOf[sides[s].corner] = edge;
        }
    }
    built = true;
}

} // namespace polyfab
