// SPDX-License-Identifier: GPL-3.0-or-later
// Edge, group and vertex handling, and the keys of all handling modes.
#include "editor/modes/handling_modes.h"

#include "editor/editor_state.h"
#include "editor/modes/face_mode.h"
#include "editor/modes/new_face.h"
#include "editor/modes/point_drag.h"
#include "editor/modes/under_mouse.h"
#include "mesh/faces.h"
#include "mesh/join_faces.h"
#include "mesh/stale.h"
#include "mesh/weld_pair.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

/// Points move in the plane of the pane in which they were grabbed, wherever the mouse is.
class GripDrag : public PointDrag {
  public:
    GripDrag(const Event& press, const PanePlace& place, std::vector<std::int32_t> dragged,
             std::string dragging, const char* moving)
        : PointDrag(std::move(dragged), std::move(dragging)), x(press.x), y(press.y),
          left(place.left), name(moving) {}

    void move(const Event& event) override {
        const double right = event.x - x;
        const double down = event.y - y;
        moved = moved || isDrag(right, down);
        if (!moved) return;
        drags.step = name;
        AffineMap turn = projection.toWorld;
        for (double* row : turn.row) row[3] = 0;
        const Vec3 step = turn(left ? Vec3{right, down, 0} : Vec3{0, down, right});
        place([&](const Vec3& at) { return at + step; });
    }

  protected:
    bool moved = false; ///< more than a hand trembles

  private:
    int x, y; ///< client position of the press
    bool left;
    const char* name; ///< what undo calls it
};

/// The side on the other face of this edge, when there is exactly one; otherwise the title tells.
std::optional<Side> neighbour(const Side& side) {
    const std::vector<Side> others = otherSides(*OB, side);
    if (others.size() == 1) return others.front();
    noteInTitle(others.empty() ? "there is no adjacent face on this edge"
                               : "there is more than one adjacent face on this edge");
    return std::nullopt;
}

Side currentSide() { return {workbench.currentEdgeFace, workbench.currentEdgeCorner}; }

void deleteCurrentEdge() {
    if (!currentEdgeIsLive()) return note("no current edge: click one");
    const Side side = currentSide();
    const auto other = neighbour(side);
    if (!other) return;
    if (const char* const refused = joinFaces(*OB, side, *other)) {
        noteInTitle(refused);
        return;
    }
    forgetCurrentEdge();
    stale.edges = true;
    updateTitle();
    note("joined the two faces on the edge to face " + counted(std::int64_t{side.face} + 1));
}

/// Welds the current vertex onto the one under the mouse. False when there is no other one.
bool weldAt(const Event& event) {
    const auto place = pickingPlace(event);
    const int onto = place ? pointAt(*OB, *place, look.pickRadius, OB->curvertex) : -1;
    if (onto < 0) return false;
    weldPair(*OB, OB->curvertex, onto);
    OB->curvertex = onto;
    OB->highlightPoint(onto);
    forgetCurrentEdge(); // tidying may have numbered its face's corners anew
    dropNewFace();       // of which this may be a corner
    stale.edges = true;
    drags.step = "weld two vertexes";
    noteInTitle("welded onto vertex " + std::to_string(onto + 1));
    return true;
}

class VertexDrag : public GripDrag {
  public:
    VertexDrag(const Event& press, const PanePlace& place)
        : GripDrag(press, place, {OB->curvertex}, "vertex " + std::to_string(OB->curvertex + 1),
                   "move vertex"),
          collects(keyIsDown(key::ctrl)) {}

    void drop(const Event& event) override {
        move(event);
        if (!moved && collects) return collectVertex(OB->curvertex);
        if (moved && keyIsDown(key::ctrl) && OB->curvertex >= 0) {
            cancel(); // a weld moves it onto the other, not to where the mouse is
            welded = weldAt(event);
            if (welded) return;
            move(event);
        }
        finish();
    }
    [[nodiscard]] std::string said() const override {
        return welded ? "" : GripDrag::said(); // the title tells
    }

  private:
    bool collects;
    bool welded = false;
};

struct KeyRow {
    int mode;
    int code;
    void (*act)();
    const char* step; ///< what undo calls it
};

constexpr auto keyRows = std::to_array<KeyRow>({
    {'F', key::del, deleteCurrentFace, "delete face"},
    {'E', key::del, deleteCurrentEdge, "join two faces"},
    {'P', key::enter, makeNewFace, "new face"},
});

/// What the key does in the present mode, or null.
const KeyRow* keyRow(int code) {
    const auto row = std::find_if(keyRows.begin(), keyRows.end(), [&](const KeyRow& r) {
        return r.mode == editorState.mode && r.code == code;
    });
    return row == keyRows.end() ? nullptr : &*row;
}

} // namespace

std::unique_ptr<Drag> pressEdge(const Event& press) {
    const auto place = pickingPlace(press);
    const PickedEdge edge = place ? edgeAt(*OB, *place) : PickedEdge();
    workbench.currentEdgeFace = edge.face;
    workbench.currentEdgeCorner = edge.corner;
    stale.picture = true;
    updateTitle();
    if (edge.face < 0) return nullptr;
    neighbour(currentSide());
    const Face& face = OB->faces[edge.face];
    const int from = pointAt(*OB, face, edge.corner);
    const int to = pointAt(*OB, face, edge.corner + 1);
    return std::make_unique<GripDrag>(press, *place,
                                      from == to ? std::vector{from} : std::vector{from, to},
                                      "the edge", "move edge");
}

std::unique_ptr<Drag> pressGroup(const Event& press) {
    const auto place = pickingPlace(press);
    const int index = place ? faceAt(*OB, *place) : -1;
    if (index < 0) return nullptr;
    Face& face = OB->faces[index];
    if (keyIsDown(key::ctrl)) {
        if (face.g != OB->curgroup) OB->changed = 1;
        face.g = OB->curgroup;
        drags.step = "put face into group";
        noteInTitle("face " + std::to_string(index + 1) + " is now in group "
                    + OB->currentGroupName());
    } else {
        OB->curgroup = face.g;
        noteInTitle("current group " + std::string(OB->currentGroupName()));
    }
    stale.picture = true;
    return nullptr;
}

std::unique_ptr<Drag> pressVertex(const Event& press) {
    const auto place = pickingPlace(press);
    OB->curvertex = place ? pointAt(*OB, *place) : -1;
    OB->highlightPoint(OB->curvertex);
    stale.picture = true;
    updateTitle();
    if (OB->curvertex < 0) return nullptr;
    return std::make_unique<VertexDrag>(press, *place);
}

bool handlingKeyDown(int code) {
    const KeyRow* const row = keyRow(code);
    if (row == nullptr) return false;
    row->act();
    stale.picture = true;
    return true;
}

const char* handlingStep(int code) {
    const KeyRow* const row = keyRow(code);
    return row == nullptr ? nullptr : row->step;
}

bool isHandlingMode() {
    constexpr int modes[] = {'E', 'F', 'H', 'P'};
    return std::find(std::begin(modes), std::end(modes), editorState.mode) != std::end(modes);
}

} // namespace polyfab
