// SPDX-License-Identifier: GPL-3.0-or-later
// Edge, group and vertex handling, and the keys of all handling modes.
#include "editor/modes/handling_modes.h"

#include "editor/editor_state.h"
#include "editor/modes/face_mode.h"
#include "editor/modes/point_drag.h"
#include "editor/modes/under_mouse.h"
#include "mesh/join_faces.h"
#include "mesh/stale.h"
#include "mesh/weld_pair.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

/// Where the button went down on the points that are dragged, and whether they have moved since.
struct Grip {
    int x, y;
    bool left;
    bool moved;
};

Grip grip{};

void grab(const Event& event, const PanePlace& place, std::vector<std::int32_t> points) {
    grip = {event.x, event.y, place.left, false};
    beginPointDrag(std::move(points));
}

/// Moves what is dragged in the plane of the pane in which it was grabbed, wherever the mouse is.
void dragTo(const Event& event) {
    if (!pointDragRuns()) return;
    const int right = event.x - grip.x;
    const int down = event.y - grip.y;
    grip.moved = grip.moved || isDrag(right, down);
    if (!grip.moved) return;
    AffineMap turn = projection.toWorld;
    for (double* row : turn.row) row[3] = 0;
    const auto across = static_cast<double>(right);
    const auto along = static_cast<double>(down);
    const Vec3 step = turn(grip.left ? Vec3{across, along, 0} : Vec3{0, along, across});
    placeDraggedPoints([&](const Vec3& at) {
        return Vec3{at.x + step.x, at.y + step.y, at.z + step.z};
    });
}

void pressEdge(const Event& event) {
    const auto place = pickingPlace(event);
    const PickedEdge edge = place ? edgeAt(*OB, *place) : PickedEdge();
    workbench.currentEdgeFace = edge.face;
    workbench.currentEdgeCorner = edge.corner;
    stale.picture = true;
    updateTitle();
    if (edge.face < 0) return;
    const Face& face = OB->faces[edge.face];
    const int from = indexIn(OB->points, face.q[edge.corner].p);
    const int to = indexIn(OB->points, face.q[(edge.corner + 1) % face.n].p);
    grab(event, *place, from == to ? std::vector{from} : std::vector{from, to});
}

/// The side on the other face of this edge, when there is exactly one; otherwise the title tells.
std::optional<Side> neighbour(const Side& side) {
    const std::vector<Side> others = otherSides(*OB, side);
    if (others.size() == 1) return others.front();
    platform().setTitle(others.empty() ? "there is no adjacent face on this edge"
                                       : "there is more than one adjacent face on this edge");
    return std::nullopt;
}

Side currentSide() { return {workbench.currentEdgeFace, workbench.currentEdgeCorner}; }

bool edgeIsLive(const Side& side) {
    return side.face >= 0 && side.face < OB->nf && OB->faces[side.face].q != nullptr
           && side.corner < OB->faces[side.face].n;
}

void deleteCurrentEdge() {
    const Side side = currentSide();
    if (!edgeIsLive(side)) return;
    const auto other = neighbour(side);
    if (!other) return;
    if (const char* const refused = joinFaces(*OB, side, *other)) {
        platform().setTitle(refused);
        return;
    }
    forgetCurrentEdge();
    stale.edges = true;
    updateTitle();
}

void pressVertex(const Event& event) {
    const auto place = pickingPlace(event);
    OB->curvertex = place ? pointAt(*OB, *place) : -1;
    OB->highlightPoint(OB->curvertex);
    stale.picture = true;
    updateTitle();
    if (OB->curvertex >= 0) grab(event, *place, {OB->curvertex});
}

/// Welds the dragged vertex onto the one under the mouse. False when there is no other one.
bool weldAt(const Event& event) {
    cancelPointDrag(); // a weld moves it onto the other, not to where the mouse is
    const auto place = pickingPlace(event);
    const int onto = place ? pointAt(*OB, *place, look.pickRadius, OB->curvertex) : -1;
    if (onto < 0) return false;
    weldPair(*OB, OB->curvertex, onto);
    OB->curvertex = onto;
    OB->highlightPoint(onto);
    forgetCurrentEdge(); // tidying may have numbered its face's corners anew
    stale.edges = true;
    platform().setTitle("welded onto vertex " + std::to_string(onto + 1));
    return true;
}

void releaseVertex(const Event& event) {
    dragTo(event);
    if (!pointDragRuns()) return;
    if (grip.moved && keyIsDown(key::ctrl) && OB->curvertex >= 0) {
        if (weldAt(event)) return;
        beginPointDrag({OB->curvertex});
        dragTo(event);
    }
    endPointDrag();
}

void pressGroup(const Event& event) {
    const auto place = pickingPlace(event);
    const int index = place ? faceAt(*OB, *place) : -1;
    if (index < 0) return;
    Face& face = OB->faces[index];
    if (keyIsDown(key::ctrl)) {
        if (face.g != OB->curgroup) OB->changed = 1;
        face.g = OB->curgroup;
        platform().setTitle("face " + std::to_string(index + 1) + " is now in group "
                            + OB->currentGroupName());
    } else {
        OB->curgroup = face.g;
        platform().setTitle("current group " + std::string(OB->currentGroupName()));
    }
    stale.picture = true;
}

struct KeyRow {
    int mode;
    int code;
    void (*act)();
};

constexpr auto keyRows = std::to_array<KeyRow>({
    {'F', key::del, deleteCurrentFace},
    {'E', key::del, deleteCurrentEdge},
});

/// What the key does in the present mode, or null.
const KeyRow* keyRow(int code) {
    const auto row = std::find_if(keyRows.begin(), keyRows.end(), [&](const KeyRow& r) {
        return r.mode == editorState.mode && r.code == code;
    });
    return row == keyRows.end() ? nullptr : &*row;
}

} // namespace

void handleEdges(const Event& event) {
    if (leftPressed()) {
        pressEdge(event);
        if (workbench.currentEdgeFace >= 0) neighbour(currentSide());
        return;
    }
    dragTo(event);
    if (leftReleased()) endPointDrag();
}

void handleGroups(const Event& event) {
    if (leftPressed()) pressGroup(event);
}

void handleVertexes(const Event& event) {
    if (leftPressed()) {
        pressVertex(event);
    } else if (leftReleased()) {
        releaseVertex(event);
    } else {
        dragTo(event);
    }
}

bool handlingKeyDown(int code) {
    const KeyRow* const row = keyRow(code);
    if (row == nullptr) return false;
    row->act();
    stale.picture = true;
    return true;
}

bool isHandlingKey(int code) { return keyRow(code) != nullptr; }

} // namespace polyfab
