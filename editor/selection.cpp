// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/selection.h"

#include "display/view.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <algorithm>
#include <string>

namespace polyfab {
namespace {

void setSelected(std::uint8_t selected) {
    for (Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        if (face->q != nullptr) face->selected = selected;
    }
    stale.edges = true;
}

/// The name of the group that the face is in.
std::string groupOf(const Face& face) {
    return face.g >= 0 && face.g < OB->ng ? OB->groups[face.g].name : "";
}

} // namespace

void selectAllFaces() { setSelected(1); }

void unselectAllFaces() { setSelected(0); }

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

} // namespace polyfab
