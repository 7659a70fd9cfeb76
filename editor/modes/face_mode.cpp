// SPDX-License-Identifier: GPL-3.0-or-later
// Face handling: the current face, its selection, and splitting by a drag from point to point.
#include "editor/modes/face_mode.h"

#include "display/options.h"
#include "editor/modes/under_mouse.h"
#include "mesh/faces.h"
#include "mesh/split_face.h"
#include "mesh/stale.h"
#include "tools/delete_faces.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace polyfab {
namespace {

/// The face under the mouse where the drag ended or, since that is at a corner, else at the middle
/// of the diagonal.
std::optional<Diagonal> atMouse(const std::vector<Diagonal>& found, const PanePlace& end, int a,
                                int b) {
    const Point& p = OB->points[a];
    const Point& q = OB->points[b];
    const double x = end.left ? (p.sx + q.sx) / 2 : (p.sz + q.sz) / 2;
    for (const PanePlace& place : {end, PanePlace{end.left, x, (p.sy + q.sy) / 2}}) {
        const int face = faceAt(*OB, place);
        for (const Diagonal& diagonal : found) {
            if (diagonal.face == face) return diagonal;
        }
    }
    return std::nullopt;
}

/// The only one that faces the viewer.
std::optional<Diagonal> byOrientation(const std::vector<Diagonal>& found, bool leftPane) {
    const auto faces = [&](const Diagonal& d) {
        return areaInPane(OB->faces[d.face], leftPane) < 0;
    };
    if (std::count_if(found.begin(), found.end(), faces) != 1) return std::nullopt;
    return *std::find_if(found.begin(), found.end(), faces);
}

/// Splits a face along the line between two points; gives the words for the title.
const char* splitBetween(int a, int b, const PanePlace& end) {
    std::vector<Diagonal> found = diagonalsBetween(*OB, a, b);
    std::erase_if(found, [&](const Diagonal& d) { return !isShown(OB->faces[d.face], end.left); });
    if (found.empty()) return "there is no face to split between these points";
    std::optional<Diagonal> chosen = found.front();
    if (found.size() > 1) {
        const bool mouse =
            platform().question("", "split how? (Y = at mouse, N = by orientation)", Buttons::yesNo)
            == Choice::yes;
        chosen = mouse ? atMouse(found, end, a, b) : byOrientation(found, end.left);
        if (!chosen) {
            return mouse ? "none of these faces is under the mouse"
                         : "not exactly one of these faces faces you";
        }
    }
    const bool done = splitFace(*OB, *chosen);
    drags.step = "split face";
    stale.edges = true;
    return done ? "split face OK" : "there is no room";
}

/// From the point under the press, or -1. That is looked up then, since the view may be another one
/// when the button goes up.
class SplitDrag : public Drag {
  public:
    SplitDrag(const Event& press, int point) : x(press.x), y(press.y), from(point) {}

    void drop(const Event& event) override {
        if (isDrag(event.x - x, event.y - y)) platform().setTitle(resolve(event));
    }

  private:
    const char* resolve(const Event& event) const {
        if (from < 0) return "start point of drag not found";
        const auto end = pickingPlace(event);
        const int to = end ? pointAt(*OB, *end) : -1;
        if (to < 0) return "end point of drag not found";
        if (to == from) return "start and end of drag are the same point";
        return splitBetween(from, to, *end);
    }

    int x, y;
    int from;
};

} // namespace

std::unique_ptr<Drag> pressFace(const Event& press) {
    const auto place = pickingPlace(press);
    const int point = place ? pointAt(*OB, *place) : -1;
    forgetCurrentEdge();
    OB->curface = place ? faceAt(*OB, *place) : -1;
    stale.picture = true;
    if (OB->curface >= 0 && keyIsDown(key::shift)) {
        Face& face = OB->faces[OB->curface];
        face.selected = face.selected ? 0 : 1;
        drags.step = "select face";
        noteSelection();
        note("face " + counted(std::int64_t{OB->curface} + 1)
             + (face.selected != 0 ? " is selected now" : " is not selected any more"));
    }
    updateTitle();
    return std::make_unique<SplitDrag>(press, point);
}

void deleteCurrentFace() {
    const std::int64_t face = OB->curface;
    if (!hasFace(*OB, OB->curface)) return note("no current face: click one");
    if (platform().question("", "do you want to delete this face?", Buttons::yesNo)
        != Choice::yes) {
        return note("nothing was changed");
    }
    OB->faces[OB->curface].q = nullptr;
    noteDeletedFaces(*OB);
    note("deleted face " + counted(face + 1));
}

} // namespace polyfab
