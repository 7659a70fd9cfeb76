// SPDX-License-Identifier: GPL-3.0-or-later
// The commands see to what the mesh does not know of: the picture and the screen positions.
#include "editor/face_commands.h"

#include "display/view.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"

namespace polyfab {

void collectGarbageNow() {
    collectGarbage(*OB);
    stale.edges = true;
}

void orientFaces() {
    if (stale.points) transformPoints(*OB);
    checkEdges(*OB, true, false, false);
    stale.edges = true;
}

void reverseSelectedFaces() {
    for (Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        if (face->q == nullptr || !face->selected) continue;
        reverseFace(*face);
        OB->changed = 1;
    }
}

} // namespace polyfab
