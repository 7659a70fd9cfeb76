// SPDX-License-Identifier: GPL-3.0-or-later
// The corners are sorted by their points. Those of one point are joined to sets (union-find)
// through the points at the other ends of their sides and through their faces: for both a table
// tells which corner was met there last, and the number of that corner whether it was at this
// point.
#include "tools/separate_glued.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace polyfab {
namespace {

struct Incidence {
    std::int32_t face;
    std::int32_t place;
};

template <typename Use>
void eachCorner(const Mesh& mesh, Use use) {
    for (const Face& face : liveFaces(mesh)) {
        const std::int32_t number = indexIn(mesh.faces, &face);
        for (int k = 0; k < face.n; ++k) use(pointAt(mesh, face, k), Incidence{number, k});
    }
}

struct Surfaces {
    Table<std::int32_t> end;    ///< of each point: where its corners end in `corners`
    Table<Incidence> corners;   ///< of live faces, by points and then in the order of faces
    Table<std::int32_t> parent; ///< of each of them: one not behind it in the same surface
    Table<std::int32_t> lastAtPoint;
    Table<std::int32_t> lastOnFace;

    explicit Surfaces(const Mesh& mesh)
        : end(mesh.np, 0), corners(mesh.nq), parent(mesh.nq), lastAtPoint(mesh.np, -1),
          lastOnFace(mesh.nf, -1) {}

    bool ready() const { return end && corners && parent && lastAtPoint && lastOnFace; }

    /// The first corner of the surface.
    std::int32_t root(std::int32_t c) {
        while (parent[c] != c) c = parent[c] = parent[parent[c]];
        return c;
    }

    void join(std::int32_t a, std::int32_t b) {
        const auto [low, high] = std::minmax({root(a), root(b)});
        parent[high] = low;
    }
};

void sortByPoints(const Mesh& mesh, Surfaces& s) {
    eachCorner(mesh, [&](std::int32_t point, Incidence) { ++s.end[point]; });
    std::int32_t start = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        s.end[i] = std::exchange(start, start + s.end[i]);
    }
    eachCorner(mesh,
               [&](std::int32_t point, Incidence corner) { s.corners[s.end[point]++] = corner; });
}

/// Joins the corners from `start` to `end`, which are those of the point.
void joinSurfaces(const Mesh& mesh, Surfaces& s, std::int32_t point, std::int32_t start,
                  std::int32_t end) {
    for (std::int32_t c = start; c < end; ++c) {
        s.parent[c] = c;
        const auto meet = [&](std::int32_t& last) {
            if (last >= start) s.join(last, c);
            last = c;
        };
        const auto [index, place] = s.corners[c];
        const Face& face = mesh.faces[index];
        meet(s.lastOnFace[index]);
        for (const int beside : {place == 0 ? face.n - 1 : place - 1, place + 1}) {
            const std::int32_t other = pointAt(mesh, face, beside);
            if (other != point) meet(s.lastAtPoint[other]);
        }
    }
}

/// Calls use(first, end) for the corners of every point.
template <typename Use>
void eachPoint(const Surfaces& s, std::int32_t points, Use use) {
    for (std::int32_t i = 0, start = 0; i < points; start = s.end[i++]) use(i, start, s.end[i]);
}

/// Gives copies of the point to all its surfaces but the first.
void separate(Mesh& mesh, Surfaces& s, std::int32_t point, std::int32_t start, std::int32_t end) {
    for (std::int32_t c = start; c < end; ++c) {
        const std::int32_t root = s.root(c);
        if (root == start) continue;
        const auto cornerOf = [&](std::int32_t entry) -> FaceCorner& {
            const auto [face, place] = s.corners[entry];
            return mesh.faces[face].q[place];
        };
        // A surface's first corner comes before its others, and has its copy by then.
        cornerOf(c).p = root == c ? mesh.points + copyPoint(mesh, point) : cornerOf(root).p;
    }
}

} // namespace

void separateGluedSurfaces(Mesh& mesh) {
    Surfaces s(mesh);
    if (!s.ready()) return;
    sortByPoints(mesh, s);
    std::int64_t copies = 0;
    int glued = 0;
    const std::int32_t points = mesh.np;
    LoopProgress progress(2 * std::int64_t{points});
    eachPoint(s, points, [&](std::int32_t point, std::int32_t start, std::int32_t end) {
        progress.step();
        joinSurfaces(mesh, s, point, start, end);
        std::int64_t surfaces = 0;
        for (std::int32_t c = start; c < end; ++c) surfaces += s.parent[c] == c;
        if (surfaces < 2) return;
        copies += surfaces - 1;
        ++glued;
    });
    if (!mesh.growPoints(mesh.np + copies, false)) return;
    eachPoint(s, points, [&](std::int32_t point, std::int32_t start, std::int32_t end) {
        progress.step();
        separate(mesh, s, point, start, end);
    });
    if (copies > 0) {
        mesh.changed = 1;
        stale.edges = true;
    }
    platform().message("",
                       "I have separated surfaces at " + std::to_string(glued)
                           + (glued == 1 ? " point" : " points"),
                       Icon::none);
}

} // namespace polyfab
