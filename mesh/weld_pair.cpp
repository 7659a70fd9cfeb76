// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/weld_pair.h"

#include "mesh/faces.h"
#include "mesh/garbage.h"

namespace polyfab {
namespace {

int repoint(Face& face, const Point* from, Point* onto) {
    if (!isLive(face)) return 0;
    int moved = 0;
    for (FaceCorner& corner : corners(face)) {
        if (corner.p != from) continue;
        corner.p = onto;
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
    if (!hasFace(mesh, mesh.curface)) mesh.curface = -1;
    return moved;
}

} // namespace polyfab
