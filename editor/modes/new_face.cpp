// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/new_face.h"

#include "editor/editor_state.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "workbench/notes.h"

#include <algorithm>
#include <string>

namespace polyfab {
namespace {

std::string vertexNamed(std::int32_t point) { return "vertex " + counted(std::int64_t{point} + 1); }

/// The points of these numbers; fewer if some are not there.
std::vector<Point*> pointsOf(const std::vector<std::int32_t>& numbers) {
    std::vector<Point*> points;
    for (const std::int32_t number : numbers) {
        if (number < OB->np) points.push_back(OB->points + number);
    }
    return points;
}

} // namespace

void collectVertex(std::int32_t point) {
    std::vector<std::int32_t>& corners = editorState.newFace;
    stale.picture = true;
    if (std::erase(corners, point) > 0) {
        return note(vertexNamed(point) + " is no corner of the new face any more, "
                    + counted(std::ssize(corners)) + " left");
    }
    corners.push_back(point);
    note(vertexNamed(point) + " is corner " + counted(std::ssize(corners))
         + " of a new face: Enter makes it, Esc drops it");
}

void makeNewFace() {
    const std::vector<Point*> points = pointsOf(editorState.newFace);
    if (points.size() < 3) {
        return note("a new face needs three corners or more: Ctrl+click vertexes, one after the "
                    "other");
    }
    const Face* const face =
        OB->addFaceByPoints(points.data(), static_cast<int>(points.size()), false);
    if (face == nullptr) return;
    OB->curface = indexIn(OB->faces, face);
    editorState.newFace.clear();
    stale.edges = true;
    note("made face " + counted(std::int64_t{OB->curface} + 1) + " of "
         + counted(std::ssize(points), "corner") + " in group " + OB->currentGroupName()
         + ", material " + OB->currentMaterialName());
}

void dropNewFace() {
    if (editorState.newFace.empty()) return;
    note("the new face is dropped");
    editorState.newFace.clear();
    stale.picture = true;
}

} // namespace polyfab
