// SPDX-License-Identifier: GPL-3.0-or-later
// The commands see to what the mesh does not know of: the picture, the screen positions and the
// current edge.
#include "editor/commands/face.h"

#include "display/view.h"
#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "workbench/notes.h"
#include "workbench/state.h"

namespace polyfab {
namespace {

template <typename T>
void removeFromSelected(T* FaceCorner::*reference) {
    for (const Face& face : selectedFaces(*OB)) {
        for (FaceCorner& corner : corners(face)) {
            if (corner.*reference == nullptr) continue;
            corner.*reference = nullptr;
            OB->changed = 1;
        }
    }
    stale.edges = true; // corners are other ones, which shaded panes must see
}

} // namespace

void collectGarbageNow() {
    forgetCurrentEdge(); // faces and corners get other numbers
    const std::int32_t points = OB->np, faces = OB->nf;
    if (collectGarbage(*OB)) {
        note(counted(OB->np, "point") + " and " + counted(OB->nf, "face") + " are left of "
             + counted(points) + " and " + counted(faces));
    }
    stale.edges = true;
}

void orientFaces() {
    forgetCurrentEdge();
    if (stale.points) transformPoints(*OB);
    checkEdges(*OB, true, false, false);
    stale.edges = true;
}

void reverseSelectedFaces() {
    for (Face& face : selectedFaces(*OB)) {
        reverseFace(face);
        if (indexIn(OB->faces, &face) == workbench.currentEdgeFace)
            forgetCurrentEdge(); // its corners moved
        OB->changed = 1;
        stale.edges = true; // those that face away may be hidden
    }
}

void removeNormals() { removeFromSelected(&FaceCorner::d); }

void removeTexCoords() { removeFromSelected(&FaceCorner::t); }

void setNoCurrentFace() {
    OB->curface = -1;
    stale.picture = true;
}

void setNoCurrentEdge() {
    forgetCurrentEdge();
    stale.picture = true;
}

} // namespace polyfab
