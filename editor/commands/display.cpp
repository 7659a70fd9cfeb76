// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/display.h"

#include "mesh/edges.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <cstdint>

namespace polyfab {
namespace {

void tellBadEdges() {
    std::int64_t badSides = 0, loose = 0;
    for (const FaceCorner* corner = OB->corners; corner != OB->corners + OB->nq; ++corner) {
        badSides += corner->edgeuse == 255;
        loose += corner->edgeuse == 1;
    }
    note(counted(badSides / 2, "bad edge") + ", " + counted(loose, "loose edge"));
}

} // namespace

void findBadEdges() {
    forgetCurrentEdge(); // faces and corners get other numbers
    if (checkEdges(*OB, false, false, false)) tellBadEdges();
    displayOptions.badEdges = true;
    stale.edges = true;
}

} // namespace polyfab
