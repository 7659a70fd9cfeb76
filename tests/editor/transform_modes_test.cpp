// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/transform_modes.h"

#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

constexpr unsigned left = button::left, right = button::right;
constexpr Vec3 start[] = {{0, 0, 0}, {2, 0, 0}, {0, 4, 6}, {1, 4, 6}, {9, 9, 9}};

/// A selected quad with the box (0, 0, 0) to (2, 4, 6) around it, and an unselected triangle.
class TransformModes : public WindowEvents {
  protected:
    TransformModes() {
        for (const Vec3& p : start) OB->addPoint(p.x, p.y, p.z, false);
        addFace({0, 1, 2, 3});
        addFace({0, 4, 1})->selected = 0;
        turnOptions.view = false;
        OB->changed = 0;
        box = {projection.toScreen({0, 0, 0}), projection.toScreen({2, 4, 6})};
    }
};

TEST_F(TransformModes, TurningTheObjectsOrTheViewLooksTheSame) {
    const auto fourthAfter = [&](int option, int sign) { // as seen from the first
        command(option);
        drag(300, 200, 40 * sign, 31 * sign, left);
        const Vec3 from = projection.toScreen(point(0));
        const Vec3 to = projection.toScreen(point(3));
        return Vec3{to.x - from.x, to.y - from.y, to.z - from.z};
    };
    for (const int mode : {364, 366, 368}) {
        for (int i = 0; i < 2; ++i) {
            resetAttitude();
            turnView(0, 1, true);
            turnView(1, 2, true);
            command(271);
            command(mode);
            const Vec3 turned = fourthAfter(297, 1);
            fourthAfter(297, -1);
            expectNear(fourthAfter(298, 1), turned, 1e-9);
        }
    }
}

TEST_F(TransformModes, OneDragChangesTheMeshOnlyWhenItMoves) {
    command(366);
    mouse(300, 200, left);
    mouse(350, 200, left);
    mouse(300, 200, left); // back at the start: not even rounding is left
    mouse(300, 200, 0);
    for (int i = 0; i < 5; ++i) expectNear(point(i), start[i], 0);
    select({});
    drag(300, 200, 50, 50, left);
    EXPECT_EQ(shown.windowTitle, "no face is selected");
    EXPECT_EQ(OB->changed, 0);
}

} // namespace
} // namespace polyfab::test
