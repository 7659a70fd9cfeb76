// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/transform_modes.h"

#include "tests/editor/window_fixture.h"

#include <cmath>

namespace polyfab::test {
namespace {

constexpr unsigned left = button::left;
constexpr unsigned right = button::right;

/// A selected quad with the box (0, 0, 0) to (2, 4, 6) around it, and an unselected triangle.
class TransformModes : public WindowEvents {
  protected:
    TransformModes() {
        for (const Vec3& p : start) OB->addPoint(p.x, p.y, p.z, false);
        addFace({0, 1, 2, 3});
        addFace({0, 4, 1})->selected = 0;
        turnOptions.view = false;
        OB->changed = 0;
        const Vec3 low = projection.toScreen({0, 0, 0});
        const Vec3 high = projection.toScreen({2, 4, 6});
        box = {low, high};
    }

    const std::vector<Vec3> start = {{0, 0, 0}, {2, 0, 0}, {0, 4, 6}, {1, 4, 6}, {9, 9, 9}};
};

TEST_F(TransformModes, EachTransformsTheSelectedFaces) {
    struct Row {
        int command;
        int across, down;
        unsigned button;
        Vec3 second, third, fourth; ///< where points 1 to 3 come to lie
    };
    const double s = std::sqrt(0.5);
    const Row rows[] = {
        {351, 50, 20, left, {2.5, -0.2, 0}, {0.5, 3.8, 6}, {1.5, 3.8, 6}},
        {351, 50, 20, right, {2, -0.2, -0.5}, {0, 3.8, 5.5}, {1, 3.8, 5.5}},
        {359, 100, 0, left, {3, -2, -3}, {-1, 6, 9}, {1, 6, 9}},
        {359, 0, 100, right, {1.5, 1, 1.5}, {0.5, 3, 4.5}, {1, 3, 4.5}},
        {365, 100, 0, left, {3, 0, 0}, {-1, 4, 6}, {1, 4, 6}},
        {367, 0, -100, left, {2, -2, 0}, {0, 6, 6}, {1, 6, 6}},
        {369, 100, 0, right, {2, 0, -3}, {0, 4, 9}, {1, 4, 9}},
        {364, 0, 180, left, {2, 5, 1}, {0, -1, 5}, {1, -1, 5}},
        {366, 180, 0, left, {-2, 0, 2}, {4, 4, 4}, {4, 4, 3}},
        {368, 180, 0, right, {-1, 1, 0}, {3, 3, 6}, {3, 2, 6}},
        // The first point is at the left cut-off, the fourth half-way.
        {1062, 0, 180, left, {2, 5, 1}, {0, 4, 6}, {1, 2 - s, 3 + 5 * s}},
        {1063, 180, 0, left, {2, 0, 0}, {4, 4, 4}, {4, 4, 3}},
        {1064, 90, 90, left, {2, 0, 0}, {3, 3, 6}, {3, 2, 6}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        command(row.command);
        drag(300, 200, row.across, row.down, row.button);
        expectNear(point(1), row.second);
        expectNear(point(2), row.third);
        expectNear(point(3), row.fourth);
        expectNear(point(4), start[4], 0);
        EXPECT_EQ(OB->changed, 1);
        for (int i = 0; i < 5; ++i) {
            const Vec3& p = start[static_cast<std::size_t>(i)];
            OB->points[i].x = p.x, OB->points[i].y = p.y, OB->points[i].z = p.z;
        }
    }
}

TEST_F(TransformModes, NothingMovesBeyondTheCutoffsMoreThanAtThem) {
    box.left.x = projection.toScreen({1, 0, 0}).x;
    box.right.x = projection.toScreen({1.5, 0, 0}).x;
    command(1062);
    drag(300, 200, 0, 180, left);
    expectNear(point(0), start[0], 0);
    expectNear(point(1), {2, 5, 1});
    box.right.x = box.left.x;
    const Vec3 before = point(1);
    drag(300, 200, 0, 180, left);
    EXPECT_EQ(shown.windowTitle, "the box has no extent along this axis");
    expectNear(point(1), before, 0);
}

TEST_F(TransformModes, TurningTheObjectsOrTheViewLooksTheSame) {
    const auto quadOnScreen = [&] {
        std::vector<Vec3> shape;
        const Vec3 first = projection.toScreen(point(0));
        for (int i = 1; i < 4; ++i) {
            const Vec3 at = projection.toScreen(point(i));
            shape.push_back({at.x - first.x, at.y - first.y, at.z - first.z});
        }
        return shape;
    };
    for (const int mode : {364, 366, 368}) {
        for (const bool after : {true, false}) {
            resetAttitude();
            turnView(0, 1, true);
            turnView(1, 2, true);
            if (turnOptions.after != after) command(271);
            command(mode);
            command(297);
            drag(300, 200, 40, 31, left);
            const std::vector<Vec3> turned = quadOnScreen();
            drag(300, 200, -40, -31, left);
            command(298);
            drag(300, 200, 40, 31, left);
            const std::vector<Vec3> dragged = quadOnScreen();
            for (std::size_t i = 0; i < 3; ++i) expectNear(turned[i], dragged[i], 1e-9);
        }
    }
}

TEST_F(TransformModes, TheDisplayIsMovedAndMagnified) {
    const Vec3 before = projection.toScreen({1, 2, 3});
    command(352);
    drag(300, 200, 50, 20, left);
    drag(300, 200, 7, 0, right);
    expectNear(projection.toScreen({1, 2, 3}), {before.x + 50, before.y + 20, before.z + 7});
    command(363);
    const Vec3 middle = projection.toWorld(middleOfPanes());
    drag(300, 200, 60, -40, left);
    EXPECT_DOUBLE_EQ(view.scale, 200);
    expectNear(projection.toWorld(middleOfPanes()), middle);
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(TransformModes, CutoffsGoWhereTheMouseIs) {
    command(357);
    mouse(30, 40, left);
    expectNear(box.left, {30, 40, box.left.z}, 0);
    drag(30, 40, 20, 20, left);
    expectNear(box.left, {50, 60, box.left.z}, 0);
    command(362);
    const double x = box.right.x;
    mouse(513 + 60, 70, right); // the press alone sets z
    expectNear(box.right, {x, 70, 60}, 0);
    mouse(513 + 90, 80, right);
    mouse(513 + 91, 81, 0);
    expectNear(box.right, {x, 81, 91}, 0);
    expectNear(box.left, {50, 60, box.left.z}, 0);
}

TEST_F(TransformModes, OneDragChangesTheMeshOnceAndOnlyWhenItMoves) {
    command(366);
    drag(300, 200, 0, 0, left);
    EXPECT_EQ(OB->changed, 0);
    mouse(300, 200, left);
    mouse(350, 200, left);
    EXPECT_EQ(OB->changed, 0);
    mouse(300, 200, left); // back at the start: not even rounding is left
    mouse(300, 200, 0);
    EXPECT_EQ(OB->changed, 0);
    for (int i = 0; i < 5; ++i) expectNear(point(i), start[static_cast<std::size_t>(i)], 0);
    OB->faces[0].selected = 0;
    drag(300, 200, 50, 50, left);
    EXPECT_EQ(shown.windowTitle, "no face is selected");
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(TransformModes, NormalsGoWithTheirFacesAndAreCopiedWhereShared) {
    OB->addNormal(0, 0, 1);
    OB->addNormal(0, 2, 0);
    for (int f = 0; f < 2; ++f) OB->faces[f].q[0].d = OB->normals;
    for (int k = 1; k < 4; ++k) OB->faces[0].q[k].d = OB->normals + 1;
    command(366);
    drag(300, 200, 180, 0, left); // the front goes to the right
    ASSERT_EQ(OB->nd, 3);
    const auto normal = [](int f, int k) {
        const Normal& d = *OB->faces[f].q[k].d;
        return Vec3{d.x, d.y, d.z};
    };
    expectNear(normal(0, 0), {1, 0, 0});
    expectNear(normal(0, 1), {0, 2, 0});
    expectNear(normal(1, 0), {0, 0, 1}, 0);
    // A plane through x and z at 45 degrees, stretched along x, leans over; its normal with it.
    *OB->faces[0].q[0].d = {std::sqrt(0.5), 0, std::sqrt(0.5)};
    command(365);
    drag(300, 200, 100, 0, left);
    expectNear(normal(0, 0), {1 / std::sqrt(5), 0, 2 / std::sqrt(5)});
}

} // namespace
} // namespace polyfab::test
