// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/delete_faces.h"

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/state.h"

#include <cstdint>

namespace polyfab {
namespace {

void deleteAfterQuestion(Mesh& mesh, bool selected) {
    const Choice choice = platform().question(
        "bulk delete", "do you really want to delete these faces?", Buttons::yesNo);
    if (choice != Choice::yes) return;
    deleteFaces(mesh, [&](const Face& face) { return (face.selected != 0) == selected; });
}

} // namespace

void noteDeletedFaces(Mesh& mesh) {
    mesh.changed = 1;
    stale.edges = true;
    if (!hasFace(mesh, mesh.curface)) mesh.curface = -1;
    if (!hasFace(mesh, workbench.currentEdgeFace)) forgetCurrentEdge();
}

void deleteSelectedFaces(Mesh& mesh) { deleteAfterQuestion(mesh, true); }

void deleteUnselectedFaces(Mesh& mesh) { deleteAfterQuestion(mesh, false); }

void deletePartsOfOneFace(Mesh& mesh) {
    Table<std::int32_t> faces(mesh.nprt, 0);
    if (!faces) return;
    for (const Face& face : liveFaces(mesh)) ++faces[face.prt];
    deleteFaces(mesh, [&](const Face& face) { return face.selected && faces[face.prt] == 1; });
}

} // namespace polyfab
