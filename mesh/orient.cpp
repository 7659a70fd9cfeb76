// SPDX-License-Identifier: GPL-3.0-or-later
// Orientation spreads from the current face in sweeps over all faces, each in the order of their
// numbers: a face that is reached from a lower-numbered one still has its turn in the same sweep,
// any other in the next. Two heaps hand out the faces in that order without the sweeping, so that
// on a surface that contradicts itself the same faces win.
#include "mesh/edges.h"

#include "mesh/face_area.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "mesh/progress.h"
#include "mesh/table.h"
#include "platform/platform.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <string>
#include <vector>

namespace polyfab {
namespace {

constexpr std::uint8_t badEdge = 255;

/// Per face, whether it stays as it is (1) or is turned over (0).
using Keep = Table<std::uint8_t>;
constexpr std::uint8_t unknown = 255;

struct Spread {
    int sweeps = 0;
    int reached = 1;
};

void markBadEdges(Mesh& mesh) {
    for (std::int32_t c = 0; c < mesh.nq; ++c) {
        std::uint8_t& use = mesh.corners[c].edgeuse;
        if (use == 2 && mesh.cornerSameDir[c] == 1) use = badEdge;
    }
}

/// Works out `keep` for every face that hangs together with the current one.
Spread spreadFromCurrent(const Mesh& mesh, Keep& keep) {
    using Heap = std::priority_queue<int, std::vector<int>, std::greater<>>;
    WorkCounter done;
    Spread spread;
    Heap now;
    Heap next;
    keep[mesh.curface] = screenArea(mesh.faces[mesh.curface]) <= 0 ? 1 : 0;
    now.push(mesh.curface);
    int before = 0;
    while (before != spread.reached) {
        before = spread.reached;
        ++spread.sweeps;
        while (!now.empty()) {
            const int index = now.top();
            now.pop();
            const Face& face = mesh.faces[index];
            done.step(face.n);
            const std::int32_t start = indexIn(mesh.corners, face.q);
            for (std::int32_t c = start; c < start + face.n; ++c) {
                if (mesh.corners[c].edgeuse != 2 || mesh.cornerMate[c] < 0) continue;
                const auto other = static_cast<int>(mesh.cornerFace[mesh.cornerMate[c]].face);
                if (keep[other] != unknown) continue;
                const bool disagree = mesh.cornerSameDir[c] == 1;
                keep[other] = disagree ? 1 - keep[index] : keep[index];
                ++spread.reached;
                (other > index ? now : next).push(other);
            }
        }
        std::swap(now, next);
    }
    return spread;
}

int reverseUnkept(Mesh& mesh, const Keep& keep) {
    int reversed = 0;
    for (std::int32_t i = 0; i < mesh.nf; ++i) {
        if (!isLive(mesh.faces[i]) || keep[i] != 0) continue;
        reverseFace(mesh.faces[i]);
        ++reversed;
    }
    if (reversed > 0) mesh.changed = 1;
    return reversed;
}

/// With tables built for the present state. Releases them.
void orientFaces(Mesh& mesh) {
    Keep keep(mesh.nf, unknown);
    const Spread spread = keep ? spreadFromCurrent(mesh, keep) : Spread();
    freeEdges(mesh);
    if (!keep) return;
    const int reversed = reverseUnkept(mesh, keep);
    checkEdges(mesh, false, false, false);
    platform().message("checkedges",
                       std::to_string(spread.sweeps) + " iterations, " + std::to_string(reversed)
                           + " reversed faces found, " + std::to_string(spread.reached)
                           + " faces checked",
                       Icon::none);
}

} // namespace

bool checkEdges(Mesh& mesh, bool orient, bool skipCollection, bool keepTables) {
    if (orient && !hasFace(mesh, mesh.curface)) return true;
    if (!skipCollection && !collectGarbage(mesh)) return false;
    if (!buildEdges(mesh)) return false;
    // The collection may have taken the current face away.
    if (orient && hasFace(mesh, mesh.curface)) {
        orientFaces(mesh);
        return true;
    }
    markBadEdges(mesh);
    if (!keepTables || orient) freeEdges(mesh);
    return true;
}

void reverseFace(Face& face) { std::ranges::reverse(corners(face)); }

} // namespace polyfab
