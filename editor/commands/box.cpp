// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/box.h"

#include "display/box.h"
#include "display/view.h"
#include "editor/commands/selection.h"
#include "geometry/affine.h"
#include "io/print_number.h"
#include "mesh/extent.h"
#include "mesh/face_area.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/prompts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace polyfab {
namespace {

/// Sets the selected flag of every live face that the test, made on the screen, holds of.
template <typename Test>
void setSelectedWhere(std::uint8_t selected, Test test) {
    if (stale.points) transformPoints(*OB);
    for (Face& face : liveFaces(*OB)) {
        if (test(face)) face.selected = selected;
    }
    noteSelection();
}

bool outOfBox(const Face& face) { return !inBox(face); }

/// Some of the letters x, y and z, as often as the user likes them, or "" when the question is
/// cancelled.
std::string askAxes(const std::string& question) {
    for (;;) {
        askText(question, "x");
        if (prompts.cancelled) return "";
        std::string axes = prompts.answer[0];
        if (!axes.empty() && axes.find_first_not_of("xyzXYZ") == std::string::npos) return axes;
    }
}

/// Moves the selected faces, and the box with them, by this way in the world.
void move(const Vec3& way) {
    for (const std::int32_t i : pointsOfSelectedFaces()) {
        Point& p = OB->points[i];
        moveTo(p, worldPosition(p) + way);
    }
    for (int axis = 0; axis < 3; ++axis) {
        const double* const row = projection.toScreen.row[axis];
        const double shift = row[0] * way.x + row[1] * way.y + row[2] * way.z;
        along(box.left, axis) += shift;
        along(box.right, axis) += shift;
    }
    OB->changed = 1;
    stale.points = true;
}

std::string numberText(double value) {
    char text[numberRoom];
    return {text, printG6(text, value, 0)};
}

/// The box of the eight corners of the box, taken back to the world.
Extent worldExtentOfBox() {
    Extent extent;
    for (unsigned corner = 0; corner < 8; ++corner) {
        const Vec3 at = projection.toWorld({(corner & 1 ? box.left : box.right).x,
                                            (corner & 2 ? box.left : box.right).y,
                                            (corner & 4 ? box.left : box.right).z});
        if (corner == 0) extent = {at, at};
        for (int axis = 0; axis < 3; ++axis) {
            along(extent.low, axis) = std::min(along(extent.low, axis), along(at, axis));
            along(extent.high, axis) = std::max(along(extent.high, axis), along(at, axis));
        }
    }
    return extent;
}

} // namespace

void selectInBox() { setSelectedWhere(1, inBox); }

void unselectInBox() { setSelectedWhere(0, inBox); }

void selectOutOfBox() { setSelectedWhere(1, outOfBox); }

void unselectOutOfBox() { setSelectedWhere(0, outOfBox); }

void unselectClockwise() {
    setSelectedWhere(0, [](const Face& face) { return screenArea(face) > 0; });
}

void unselectAnticlockwise() {
    setSelectedWhere(0, [](const Face& face) { return screenArea(face) < 0; });
}

void fitBoxToSelected() {
    if (!fitBox(*OB, true)) platform().message("", "no face is selected", Icon::none);
}

void centerBox() {
    if (!hasSelection()) return;
    const std::string axes =
        askAxes("center the box on 0 of which absolute coordinates: x or y or z?");
    if (axes.empty()) return;
    const Vec3 middle = projection.toWorld(Extent{box.left, box.right}.middle());
    const auto way = [&axes](const char* letters, double from) {
        return axes.find_first_of(letters) == std::string::npos ? 0 : -from;
    };
    move({way("xX", middle.x), way("yY", middle.y), way("zZ", middle.z)});
}

void tellBoxSize() {
    const auto extent = [](double a, double b) { return numberText(std::abs(b - a) / view.scale); };
    platform().message("absolute size of the box",
                       "dx=" + extent(box.left.x, box.right.x)
                           + ", dy=" + extent(box.left.y, box.right.y)
                           + ", dz=" + extent(box.left.z, box.right.z),
                       Icon::none);
}

void tellBoxRange() {
    const Extent extent = worldExtentOfBox();
    double largest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        largest = std::max(
            {largest, std::abs(along(extent.low, axis)), std::abs(along(extent.high, axis))});
    }
    // What the way through the screen leaves of a zero is no figure to show.
    const auto shown = [largest](double v) {
        return numberText(std::abs(v) <= 1e-12 * largest ? 0 : v);
    };
    const auto line = [&](const char* name, int axis) {
        return name + shown(along(extent.low, axis)) + " to " + shown(along(extent.high, axis));
    };
    platform().message("absolute range of the box",
                       line("x: ", 0) + line("\ny: ", 1) + line("\nz: ", 2), Icon::none);
}

} // namespace polyfab
