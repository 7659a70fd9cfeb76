// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/settable_points.h"

#include "editor/editor_state.h"
#include "editor/modes/drag.h"
#include "editor/modes/under_mouse.h"
#include "mesh/stale.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <cmath>
#include <cstdio>

namespace polyfab {
namespace {

/// A position as a pane shows it: across and down in pixels, depth along the pane's third axis.
struct PaneSpot {
    double across, down, depth;
};

PaneSpot spotOf(const Vec3& screen, bool left) {
    return left ? PaneSpot{screen.x, screen.y, screen.z} : PaneSpot{screen.z, screen.y, screen.x};
}

PaneSpot spotOf(const Point& p, bool left) { return spotOf(Vec3{p.sx, p.sy, p.sz}, left); }

/// Depth of the face's plane at the place: the plane through the middle of its corners, with the
/// normal that sums up the corners (Newell's method). Not finite for a face seen edge-on.
double depthOnPlane(const Face& face, const PanePlace& place) {
    PaneSpot middle{0, 0, 0};
    for (int k = 0; k < face.n; ++k) {
        const PaneSpot spot = spotOf(*face.q[k].p, place.left);
        middle.across += spot.across / face.n;
        middle.down += spot.down / face.n;
        middle.depth += spot.depth / face.n;
    }
    PaneSpot normal{0, 0, 0};
    for (int k = 0; k < face.n; ++k) {
        const PaneSpot a = spotOf(*face.q[k].p, place.left);
        const PaneSpot b = spotOf(*face.q[(k + 1) % face.n].p, place.left);
        normal.across += (a.down - b.down) * (a.depth + b.depth - 2 * middle.depth);
        normal.down += (a.depth - b.depth) * (a.across + b.across - 2 * middle.across);
        normal.depth += (a.across - b.across) * (a.down + b.down - 2 * middle.down);
    }
    return middle.depth
           - (normal.across * (place.x - middle.across) + normal.down * (place.y - middle.down))
                 / normal.depth;
}

void setSettable(Vec3& point, const PanePlace& place) {
    double depth = spotOf(projection.toScreen(point), place.left).depth;
    if (const int face = faceAt(*OB, place); face >= 0) {
        const double onPlane = depthOnPlane(OB->faces[face], place);
        if (std::isfinite(onPlane)) depth = onPlane;
    }
    point = projection.toWorld(place.left ? Vec3{place.x, place.y, depth}
                                          : Vec3{depth, place.y, place.x});
}

void noteSettable(std::size_t which) {
    const Vec3& at = workbench.settable[which];
    char text[128];
    std::snprintf(text, sizeof text, "settable point %d is at %.6g, %.6g, %.6g",
                  static_cast<int>(which) + 1, at.x, at.y, at.z);
    note(text);
}

bool setSettablePoints(const Event& event) {
    if (!keyIsDown(key::ctrl)) return false;
    const auto place = pickingPlace(event);
    bool set = false;
    for (std::size_t i = 0; place && i < workbench.settable.size(); ++i) {
        if (!keyIsDown('1' + static_cast<int>(i))) continue;
        platform().beep();
        setSettable(workbench.settable[i], *place);
        stale.picture = set = true;
        noteSettable(i);
    }
    return set;
}

} // namespace

bool settablePointPress(const Event& event) {
    if (leftPressed()) drags.setsPoint = setSettablePoints(event);
    return drags.setsPoint && (editorState.buttons & 5) != 0;
}

} // namespace polyfab
