// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/transform_modes.h"

#include "display/box.h"
#include "display/look.h"
#include "display/view.h"
#include "editor/commands/selection.h"
#include "editor/commands/transform_selected.h"
#include "editor/editor_state.h"
#include "editor/modes/point_drag.h"
#include "geometry/affine.h"
#include "mesh/extent.h"
#include "mesh/stale.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace polyfab {
namespace {

constexpr double doubling = 100; ///< pixels of the desktop that double a size
constexpr double radiansPerPixel = std::numbers::pi / 360;

/// The drag of a mode, from press to release.
struct ModeDrag {
    int x = 0; ///< client position of the event before
    int y = 0;
    bool inRightPane = false; ///< where it began
    Vec3 moved;               ///< pixels since the press, along the screen's axes
    AffineMap axes;           ///< world -> the axes in which the selected faces are transformed
    Vec3 pivot;               ///< the middle of the selected faces along these axes, in the world
    AffineMap map;            ///< what the drag does to them
};

ModeDrag drag;

bool begins() { return (editorState.buttons >> 2 & 3) == 0; }
bool ends() { return (editorState.buttons & 3) == 0; }

/// Pixels since the event before; none at the press. The right button must have been down already
/// for a movement to count along z, as for the mouse position.
Vec3 step(const Event& event) {
    if (begins()) {
        drag = ModeDrag();
        drag.inRightPane = event.x >= panesOf(view.client).rightStart;
        drag.x = event.x;
        drag.y = event.y;
    }
    const double across = event.x - drag.x;
    const double down = event.y - drag.y;
    drag.x = event.x;
    drag.y = event.y;
    drag.moved.y += down;
    const bool rightWasDown = (editorState.buttons & 8) != 0;
    (rightWasDown ? drag.moved.z : drag.moved.x) += across;
    return rightWasDown ? Vec3{0, down, across} : Vec3{across, down, 0};
}

/// A thousandfold at most in one drag, so that nothing shrinks to a point or flies off for good.
double factorOf(const Vec3& moved) {
    return std::exp2(
        std::clamp((moved.x + moved.z - moved.y) / (doubling * look.pixel), -10.0, 10.0));
}

/// About y, what faces the viewer moves to the right when the turn runs backwards.
double angleOf(int axis, const Vec3& moved) {
    return (axis == 1 ? -1 : 1) * radiansPerPixel / look.pixel * (moved.x + moved.y + moved.z);
}

/// Begins to drag the selected faces, whose points and normals go with `drag.map`; `normals` false:
/// the points alone.
void beginObjects(const AffineMap& axes, bool normals) {
    const Extent extent = extentOfFaces(*OB, axes, true);
    if (extent.empty()) {
        platform().setTitle("no face is selected");
        return;
    }
    drag.axes = axes;
    drag.pivot = inverseOf(axes)(extent.middle());
    const auto turnNormals = [] { transformSelectedNormals(*OB, drag.map); };
    beginPointDrag(pointsOfSelectedFaces(), normals ? turnNormals : std::function<void()>());
}

/// A map along `drag.axes`, as a map of the world that keeps the pivot.
AffineMap worldMap(const AffineMap& map) {
    return about(drag.pivot, product(inverseOf(drag.axes), product(map, drag.axes)));
}

bool hasMoved() { return drag.moved.x != 0 || drag.moved.y != 0 || drag.moved.z != 0; }

/// One event of a drag of the selected faces. `makeMap` is the world's map for the movement so far.
template <typename MakeMap>
void dragObjects(const Event& event, const AffineMap& axes, MakeMap makeMap) {
    step(event);
    if (begins()) beginObjects(axes, true);
    if (!pointDragRuns()) return;
    drag.map = hasMoved() ? makeMap() : AffineMap(); // rounding moves nothing either
    placeDraggedPoints(drag.map);
    if (ends()) endPointDrag();
}

void turn(const Event& event, int axis) {
    if (turnOptions.view) {
        turnView(axis, angleOf(axis, step(event)), turnOptions.after);
        return;
    }
    // An object's own axes are those of a screen that shows it upright.
    const AffineMap axes = turnOptions.after ? screenAxes() : scaling({1, -1, -1});
    dragObjects(event, axes,
                [axis] { return worldMap(rotation(axis, angleOf(axis, drag.moved))); });
}

/// Where a world position lies between the box's cut-offs: 0 left, 1 right.
double shareInBox(const Vec3& p, int axis) {
    const double left = along(box.left, axis);
    const double right = along(box.right, axis);
    return std::clamp((along(projection.toScreen(p), axis) - left) / (right - left), 0.0, 1.0);
}

Vec3 twisted(const Vec3& p, int axis, const AffineMap& back) {
    const double angle = angleOf(axis, drag.moved) * shareInBox(p, axis);
    if (angle == 0) return p;
    const Vec3 from{p.x - drag.pivot.x, p.y - drag.pivot.y, p.z - drag.pivot.z};
    const Vec3 to = back(rotation(axis, angle)(drag.axes(from)));
    return {drag.pivot.x + to.x, drag.pivot.y + to.y, drag.pivot.z + to.z};
}

void beginTwist(int axis) {
    if (along(box.left, axis) == along(box.right, axis)) {
        platform().setTitle("the box has no extent along this axis");
    } else {
        beginObjects(screenAxes(), false);
    }
}

void twist(const Event& event, int axis) {
    step(event);
    if (begins()) beginTwist(axis);
    if (!pointDragRuns()) return;
    const AffineMap back = inverseOf(drag.axes);
    placeDraggedPoints([&](const Vec3& p) { return twisted(p, axis, back); });
    if (ends()) endPointDrag();
}

void setCutoffs(const Event& event, Vec3& cutoffs) {
    step(event);
    // Bits of the right button, now and before: its press sets z at once, and its release still.
    const bool right = (editorState.buttons & 10) != 0;
    const int start = drag.inRightPane ? panesOf(view.client).rightStart : 0;
    (right ? cutoffs.z : cutoffs.x) = event.x - start;
    cutoffs.y = event.y;
    stale.picture = true;
}

} // namespace

void moveDisplay(const Event& event) { panView(step(event)); }

void scaleDisplay(const Event& event) { zoomView(factorOf(step(event)), middleOfPanes()); }

void moveObjects(const Event& event) {
    dragObjects(event, screenAxes(), [] {
        const Vec3 pixels = inverseOf(drag.axes)(drag.moved);
        AffineMap map;
        for (int i = 0; i < 3; ++i) map.row[i][3] = along(pixels, i) / view.scale;
        return map;
    });
}

void resizeObjects(const Event& event) {
    dragObjects(event, screenAxes(), [] {
        const double factor = factorOf(drag.moved);
        if (editorState.resizeAxis == 0)
            return about(drag.pivot, scaling({factor, factor, factor}));
        Vec3 factors{1, 1, 1};
        along(factors, editorState.resizeAxis - 'X') = factor;
        return worldMap(scaling(factors));
    });
}

void turnAboutX(const Event& event) { turn(event, 0); }
void turnAboutY(const Event& event) { turn(event, 1); }
void turnAboutZ(const Event& event) { turn(event, 2); }

void twistAboutX(const Event& event) { twist(event, 0); }
void twistAboutY(const Event& event) { twist(event, 1); }
void twistAboutZ(const Event& event) { twist(event, 2); }

void setLeftCutoff(const Event& event) { setCutoffs(event, box.left); }
void setRightCutoff(const Event& event) { setCutoffs(event, box.right); }

} // namespace polyfab
