// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/navigation.h"

#include "display/box.h"
#include "display/look.h"
#include "display/picking.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace polyfab {
namespace {

constexpr double stepFactor = 1.2;
constexpr double mostSteps = 100; ///< of the wheel in one event
constexpr double radiansPerPixel = std::numbers::pi / 360;

/// The drag with the middle button.
struct MiddleDrag {
    bool runs = false;
    bool inRightPane = false; ///< where it began
    int x = 0;                ///< client position of the event before
    int y = 0;
};

MiddleDrag drag;

bool modeButtonsAreDown() { return (editorState.buttons & 3) != 0; }

/// About the axis that is seen vertical, then about the one seen horizontal: what faces the viewer
/// of the pane follows the mouse.
void turnByMouse(int across, int down) {
    const double angle = radiansPerPixel / look.pixel;
    turnView(1, -angle * across, true);
    turnView(drag.inRightPane ? 2 : 0, angle * down, true);
}

void panByMouse(double across, double down) {
    panView(drag.inRightPane ? Vec3{0, down, across} : Vec3{across, down, 0});
}

} // namespace

void zoomByWheel(const Event& event) {
    if (modeButtonsAreDown()) return;
    Vec3 centre = middleOfPanes();
    if (const auto place = placeInPane(view.client, event.x, event.y)) {
        (place->left ? centre.x : centre.z) = place->x;
        centre.y = place->y;
    }
    zoomView(std::pow(stepFactor, std::clamp(event.steps, -mostSteps, mostSteps)), centre);
}

void navigateByMouse(const Event& event) {
    const bool runs = (event.buttons & button::middle) != 0 && !modeButtonsAreDown();
    if (runs && !drag.runs) drag.inRightPane = event.x >= panesOf(view.client).rightStart;
    if (runs && drag.runs) {
        const int across = event.x - drag.x;
        const int down = event.y - drag.y;
        keyIsDown(key::shift) ? turnByMouse(across, down) : panByMouse(across, down);
    }
    drag = {runs, drag.inRightPane, event.x, event.y};
}

void endNavigation() { drag = MiddleDrag(); }

bool navigateByKey(int code) {
    const bool fitsAll = code == key::home;
    const bool fitsSelected = code == key::fullStop || code == key::keypadPoint;
    if (!fitsAll && !fitsSelected) return false;
    if (modeButtonsAreDown()) return true;
    if (fitsAll) {
        fitView(*OB);
        fitBox(*OB, false);
    } else if (!fitViewToSelected(*OB)) {
        platform().setTitle("no face is selected");
    }
    return true;
}

} // namespace polyfab
