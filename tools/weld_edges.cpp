// SPDX-License-Identifier: GPL-3.0-or-later
// Corners are not re-pointed edge by edge: a forest tells into which point each one went, and is
// asked for every corner that is looked at. Whoever asks shortens the way for the next (path
// halving: Tarjan and van Leeuwen, Worst-case analysis of set union algorithms, 1984).
#include "tools/weld_edges.h"

#include "geometry/vec3.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "tools/asking.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"
#include "workbench/title.h"

#include <cstdint>

namespace polyfab {
namespace {

class EdgeWelder {
  public:
    EdgeWelder(Mesh& owner, double longest) : mesh(owner), square(longest), into(owner.np) {
        for (std::int32_t i = 0; into && i < mesh.np; ++i) into[i] = i;
    }
    explicit operator bool() const { return static_cast<bool>(into); }

    /// Goes through all faces once. False when that is to be the last time.
    bool pass() {
        ++number;
        collapses = 0;
        looks = 0;
        LoopProgress progress(mesh.nf);
        for (const Face& face : allFaces(mesh)) {
            progress.step();
            if (isLiveSelected(face) && !passFace(face)) return false;
        }
        showTitle("%6d", collapses);
        return collapses != 0;
    }

    void repointCorners() {
        for (const Face& face : liveFaces(mesh)) {
            for (FaceCorner& corner : corners(face)) corner.p = mesh.points + pointNow(corner);
        }
    }

    void tell() const { noteOfSelected(mesh, "collapsed " + counted(collapsed, "edge")); }

  private:
    std::int32_t pointNow(const FaceCorner& corner) {
        std::int32_t point = pointOf(mesh, corner);
        while (into[point] != point) point = into[point] = into[into[point]];
        return point;
    }

    /// False when the user wants it to stop.
    bool passFace(const Face& face) {
        if (face.n < 1) return true;
        std::int32_t from = pointNow(face.q[face.n - 1]);
        for (const FaceCorner& corner : corners(face)) {
            ++looks;
            const std::int32_t to = pointNow(corner);
            if (from != to && squaredDistance(mesh.points[from], mesh.points[to]) <= square) {
                return collapse(from, to);
            }
            from = to;
        }
        return true;
    }

    bool collapse(std::int32_t from, std::int32_t to) {
        ++collapses;
        // No power of two less one; it makes the title change at uneven intervals.
        constexpr int mask = 0x255;
        if ((looks & mask) == 0) {
            showTitle("%6d : %6d", number, static_cast<int>(mesh.nq - looks));
        }
        if (abortRequested()) return false;
        const Point& a = mesh.points[from];
        Point& b = mesh.points[to];
        b.x = (a.x + b.x) * 0.5;
        b.y = (a.y + b.y) * 0.5;
        b.z = (a.z + b.z) * 0.5;
        into[from] = to;
        ++collapsed;
        return true;
    }

    Mesh& mesh;
    double square;
    Table<std::int32_t> into; ///< of each point: the one it went into, or itself
    int number = 0;           ///< of the pass
    int collapses = 0;        ///< in this pass
    std::int64_t looks = 0;   ///< at corners, in this pass
    std::int64_t collapsed = 0;
};

} // namespace

void weldedges(Mesh& mesh) {
    const double longest = askNumber("max distance?", "1e-5");
    const SavedTitle title(256);
    mesh.changed = 1;
    stale.points = stale.edges = true;
    EdgeWelder welder(mesh, longest * longest);
    if (!welder) return;
    while (welder.pass()) {
    }
    welder.repointCorners();
    welder.tell();
}

} // namespace polyfab
