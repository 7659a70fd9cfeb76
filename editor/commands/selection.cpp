// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/selection.h"

#include "geometry/affine.h"
#include "mesh/extent.h"
#include "mesh/face_area.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"

#include <algorithm>
#include <string>

namespace polyfab {
namespace {

void setSelected(std::uint8_t selected) {
    for (Face& face : liveFaces(*OB)) face.selected = selected;
    noteSelection();
}

/// Unselects the selected faces that `which` picks out, and reports how many under the caption.
template <typename Which>
void unselectWhere(Which which, const char* caption) {
    int count = 0;
    for (Face& face : selectedFaces(*OB)) {
        if (!which(face)) continue;
        face.selected = 0;
        ++count;
    }
    if (count > 0) noteSelection();
    platform().message(caption, std::to_string(count) + " such faces found", Icon::none);
}

/// The name of the group that the face is in.
std::string groupOf(const Face& face) {
    return face.g >= 0 && face.g < OB->ng ? OB->groups[face.g].name : "";
}

} // namespace

void selectAllFaces() { setSelected(1); }

void unselectAllFaces() { setSelected(0); }

void unselectSmallFaces() {
    unselectWhere([](const Face& face) { return face.n < 5; }, "faces with 5 or more corners");
}

void unselectFacesWithArea() {
    unselectWhere([](const Face& face) { return !hasNoArea(face); }, "zero-area faces");
}

int countSelectedPoints() {
    OB->markPointsOnSelected();
    return static_cast<int>(std::count_if(OB->points, OB->points + OB->np,
                                          [](const Point& point) { return point.onselected; }));
}

void showInfo() {
    const auto number = [](int n) { return std::to_string(n); };
    std::string text = "has " + number(OB->np) + " points, " + number(OB->nf) + " faces, "
                       + number(OB->nq) + " face-sides; " + number(countSelectedPoints())
                       + " points selected";
    if (OB->curface >= 0 && OB->curface < OB->nf) {
        text +=
            ", current face " + number(OB->curface + 1) + ", in " + groupOf(OB->faces[OB->curface]);
    }
    if (OB->curvertex >= 0) text += ", current vertex " + number(OB->curvertex + 1);
    platform().setTitle(text);
}

std::vector<std::int32_t> pointsOfSelectedFaces() {
    std::vector<bool> used(static_cast<std::size_t>(OB->np));
    for (const Face& face : selectedFaces(*OB)) {
        for (const FaceCorner& corner : corners(face)) {
            used[static_cast<std::size_t>(pointOf(*OB, corner))] = true;
        }
    }
    std::vector<std::int32_t> points;
    for (std::int32_t i = 0; i < OB->np; ++i) {
        if (used[static_cast<std::size_t>(i)]) points.push_back(i);
    }
    return points;
}

bool hasSelection() {
    const bool any = !extentOfFaces(*OB, AffineMap(), true).empty();
    if (!any) platform().message("", "no face is selected", Icon::none);
    return any;
}

} // namespace polyfab
