// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/navigation.h"

#include "display/box.h"
#include "display/look.h"
#include "display/picking.h"
#include "editor/modes/view_drag.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

constexpr double stepFactor = 1.2;
constexpr double mostSteps = 100; ///< of the wheel in one event

bool modeButtonsAreDown() { return (editorState.buttons & anyButton) != 0; }

/// Turns the view about the axis that is seen vertical, then about the one seen horizontal: what
/// faces the viewer of the pane follows the mouse.
void turnByStep(const Vec3& step, bool inRightPane) {
    const double angle = radiansPerPixel / look.pixel;
    turnView(1, -angle * step.x, true);
    turnView(inRightPane ? 2 : 0, angle * step.y, true);
}

std::unique_ptr<Drag> beginNavigation(const Event& press) {
    const bool inRightPane = press.x >= panesOf(view.client).rightStart;
    const auto change = [inRightPane](const Vec3& step) {
        if (keyIsDown(key::shift)) return turnByStep(step, inRightPane);
        panView(inRightPane ? Vec3{0, step.y, step.x} : step);
    };
    return std::make_unique<StepsDrag>(press, change, [](const Vec3&) { return ""; });
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
    std::unique_ptr<Drag>& drag = drags.ofMiddle;
    if ((event.buttons & button::middle) == 0 || modeButtonsAreDown()) {
        drag.reset();
    } else if (drag) {
        drag->move(event);
    } else {
        drag = beginNavigation(event);
    }
}

bool navigateByKey(int code) {
    const bool fitsAll = code == key::home;
    const bool fitsSelected = code == key::fullStop || code == key::keypadPoint;
    if (!fitsAll && !fitsSelected) return false;
    if (modeButtonsAreDown()) return true;
    if (fitsAll) {
        fitView(*OB);
        fitBox(*OB, false);
        note("both panes show everything");
    } else if (fitViewToSelected(*OB)) {
        note("both panes show the selected faces");
    } else {
        noteInTitle("no face is selected");
    }
    return true;
}

} // namespace polyfab
