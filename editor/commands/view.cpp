// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/view.h"

#include "display/view.h"
#include "editor/commands/selection.h"
#include "editor/commands/transform_selected.h"
#include "editor/modes/transform_modes.h"
#include "geometry/affine.h"
#include "mesh/extent.h"
#include "platform/platform.h"
#include "workbench/prompts.h"

#include <string>
#include <string_view>

namespace polyfab {
namespace {

/// The axis that the user names, or -1 when the question is cancelled.
int askAxis(const std::string& question) {
    constexpr std::string_view letters = "xyzXYZ";
    for (;;) {
        askText(question, "x");
        if (prompts.cancelled) return -1;
        const std::string_view answer = prompts.answer[0];
        if (answer.size() == 1 && letters.find(answer[0]) != std::string_view::npos) {
            return static_cast<int>(letters.find(answer[0])) % 3;
        }
    }
}

AffineMap mirror(int axis) {
    Vec3 factors{1, 1, 1};
    along(factors, axis) = -1;
    return scaling(factors);
}

void transform(const AffineMap& map) {
    if (hasSelection()) transformSelected(*OB, map);
}

} // namespace

void letRotationTurnView() { turnOptions.view = true; }
void letRotationTurnObjects() { turnOptions.view = false; }
bool rotationTurnsView() { return turnOptions.view; }
bool rotationTurnsObjects() { return !turnOptions.view; }

void toggleRotationAfter() { turnOptions.after = !turnOptions.after; }
bool rotationComesAfter() { return turnOptions.after; }

void showUpright() {
    resetAttitude();
    fitView(*OB);
}

void mirrorOnScreen() {
    if (!hasSelection()) return;
    const int axis = askAxis("mirror-image in which coordinate as on screen: x or y or z?");
    if (axis < 0) return;
    const AffineMap axes = screenAxes();
    const AffineMap back = inverseOf(axes);
    const Vec3 middle = back(extentOfFaces(*OB, axes, true).middle());
    transformSelected(*OB, about(middle, product(back, product(mirror(axis), axes))));
}

void changeSign() {
    if (!hasSelection()) return;
    const int axis = askAxis("change sign of which absolute coordinate: x or y or z?");
    if (axis >= 0) transformSelected(*OB, mirror(axis));
}

void swopYAndZ() { transform({{{1, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}}}); }

void rotateAboutY() { transform({{{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}}}); }

} // namespace polyfab
