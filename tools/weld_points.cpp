// SPDX-License-Identifier: GPL-3.0-or-later
// A point that is left when its turn comes has never been close to one that took others, nor moved;
// so who takes a point depends on the positions at the start alone. It is found for all points
// first; corners and positions then follow in one pass.
#include "tools/weld_points.h"

#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "tools/asking.h"
#include "tools/close_points.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"
#include "workbench/title.h"

#include <cstdint>

namespace polyfab {
namespace {

/// Of each point: the one that took it, itself as long as it is left, or that it takes no part.
using Takers = Table<std::int32_t>;
constexpr std::int32_t noPart = -1;

/// Marks both ends of the edges in question, points and corners.
void markEnds(Mesh& mesh, bool allEdges) {
    for (std::int32_t i = 0; i < mesh.np; ++i) mesh.points[i].mark = 0;
    for (std::int32_t i = 0; i < mesh.nq; ++i) mesh.corners[i].mark = 0;
    for (const Face& face : selectedFaces(mesh)) {
        for (const auto& [from, to] : sides(face)) {
            if (!allEdges && from.edgeuse != 1) continue;
            from.mark = to.mark = from.p->mark = to.p->mark = 1;
        }
    }
}

/// Enters the marked points as left; gives their number.
std::int32_t enterMarked(const Mesh& mesh, Takers& takers) {
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        takers[i] = mesh.points[i].mark ? i : noPart;
        count += mesh.points[i].mark;
    }
    return count;
}

void takeTurns(const Mesh& mesh, ClosePoints& points, Takers& takers) {
    int taking = 0;
    LoopProgress progress(mesh.np);
    for (std::int32_t i = mesh.np - 1; i >= 0; --i) {
        progress.step();
        if (takers[i] == noPart) continue;
        if (abortRequested()) return;
        if (takers[i] != i) continue;
        if (taking++ % 256 == 0) showTitle("%6d", i);
        points.takeOut(i, [&](std::int32_t close) { takers[close] = i; });
    }
}

/// How many points others have taken.
std::int64_t countTaken(const Mesh& mesh, const Takers& takers) {
    std::int64_t count = 0;
    for (std::int32_t i = 0; i < mesh.np; ++i) count += takers[i] != i && takers[i] != noPart;
    return count;
}

/// Collects, asks, and finds out who takes whom; follow(takers) then changes the mesh.
template <typename Follow>
void takeClose(Mesh& mesh, bool allEdges, Follow follow) {
    mesh.changed = 1;
    forgetCurrentEdge(); // faces and corners get other numbers
    stale.edges = true;
    if (!collectGarbage(mesh)) return;
    if (!checkEdges(mesh, false, true, false)) return;
    moveProgress();
    markEnds(mesh, allEdges);
    Takers takers(mesh.np);
    if (!takers) return;
    const SavedTitle title(256);
    const double distance = askNumber("max distance?", "1e-5");
    ClosePoints points(mesh, enterMarked(mesh, takers), distance * distance);
    if (!points) return;
    takeTurns(mesh, points, takers);
    follow(takers);
}

} // namespace

void weldclose(Mesh& mesh, bool allEdges) {
    takeClose(mesh, allEdges, [&](const Takers& takers) {
        for (FaceCorner* corner = mesh.corners; corner != mesh.corners + mesh.nq; ++corner) {
            const std::int32_t taker = takers[pointOf(mesh, *corner)];
            if (taker != noPart) corner->p = mesh.points + taker;
        }
        noteOfSelected(mesh, "welded " + counted(mesh.np, "point") + " to "
                                 + counted(mesh.np - countTaken(mesh, takers)));
    });
}

void bringclose(Mesh& mesh, bool allEdges) {
    takeClose(mesh, allEdges, [&](const Takers& takers) {
        for (std::int32_t i = 0; i < mesh.np; ++i) {
            if (takers[i] == noPart) continue;
            Point& point = mesh.points[i];
            const Point& taker = mesh.points[takers[i]];
            moveTo(point, worldPosition(taker));
            point.sx = taker.sx, point.sy = taker.sy, point.sz = taker.sz;
        }
        noteOfSelected(mesh,
                       "brought " + counted(countTaken(mesh, takers), "point") + " to others");
    });
}

} // namespace polyfab
