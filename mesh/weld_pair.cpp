// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/weld_pair.h"

#include "mesh/garbage.h"

namespace polyfab {
namespace {

int repoint(Face& face, const Point* from, Point* onto) {
    int moved = 0;
    for (int k = 0; face.q != nullptr && k < face.n; ++k) {
        if (face.q[k].p != from) continue;
        face.q[k].p = onto;
        ++moved;
    }
    return moved;
}

} // namespace

int weldPair(Mesh& mesh, int from, int onto) {
    int moved = 0;
    const int faces = mesh.nf; // those that tidying adds are tidy
    for (int f = 0; f < faces; ++f) {
        const int here = repoint(mesh.faces[f], mesh.points + from, mesh.points + onto);
        if (here == 0) continue;
        moved += here;
        mesh.changed = 1;
        tidyFace(mesh, f, true);
        if (mesh.faces == nullptr || mesh.corners == nullptr) return moved; // out of memory, told
    }
    if (mesh.curface >= 0 && mesh.faces[mesh.curface].q == nullptr) mesh.curface = -1;
    return moved;
}

} // namespace polyfab
