// SPDX-License-Identifier: GPL-3.0-or-later
// Navigation by wheel, middle button and keys.
#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

class Navigation : public WindowEvents {
  protected:
    Navigation() { addCube(); }
};

TEST_F(Navigation, TheWheelZoomsAboutTheMouse) {
    const Vec3 inLeft = projection.toWorld({30, 40, middleOfPanes().z});
    wheel(30, 40, 1);
    EXPECT_DOUBLE_EQ(view.scale, 120);
    expectNear(projection.toWorld({30, 40, middleOfPanes().z}), inLeft);
    const Vec3 inRight = projection.toWorld({middleOfPanes().x, 50, 60});
    wheel(513 + 60, 50, -2.5);
    expectNear(projection.toWorld({middleOfPanes().x, 50, 60}), inRight);
    EXPECT_NEAR(view.scale, 120 / std::pow(1.2, 2.5), 1e-9);
}

TEST_F(Navigation, TheMiddleButtonPansAndWithShiftTurns) {
    drag(100, 100, 20, 30, button::middle);
    drag(600, 100, 20, -10, button::middle);
    expectNear(projection.toScreen({0, 0, 0}), {275, 275, 275});
    down(key::shift);
    const auto turned = [&](int x, int across, int down) {
        resetAttitude();
        drag(x, 100, across, down, button::middle);
        // What faces the viewer follows the mouse; the right pane looks at the right side.
        return screenAxes()(x < 512 ? Vec3{0, 0, 1} : Vec3{1, 0, 0});
    };
    expectNear(turned(100, 180, 0), {1, 0, 0});
    expectNear(turned(100, 0, 180), {0, 1, 0});
    expectNear(turned(600, 180, 0), {0, 0, 1});
    expectNear(turned(600, 0, 180), {0, 1, 0});
}

TEST_F(Navigation, ARunningDragIsNotDisturbed) {
    command(351);
    mouse(300, 200, button::left);
    const View before = view;
    wheel(30, 40, 3);
    for (const int code : {36, 190}) key(code);
    for (const int x : {300, 350}) mouse(x, 200, button::left | button::middle);
    mouse(350, 200, button::middle);
    EXPECT_EQ(view.scale, before.scale);
    EXPECT_EQ(view.offset.x, before.offset.x);
    expectNear(point(0), {-0.5, -1, -1});
    mouse(360, 200, button::middle); // only now
    EXPECT_DOUBLE_EQ(view.offset.x, before.offset.x + 10);
}

} // namespace
} // namespace polyfab::test
