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

TEST_F(TransformModes, EachTransformsTheSelectedFaces) {
    struct Row {
        int command;
        int across, down;
        unsigned button;
        Vec3 second, third, fourth; ///< where points 1 to 3 come to lie
    };
    const double s = std::sqrt(0.5);
    const Row rows[] = {
        {351, 50, 20, right, {2, -0.2, -0.5}, {0, 3.8, 5.5}, {1, 3.8, 5.5}},
        {359, 100, 0, left, {3, -2, -3}, {-1, 6, 9}, {1, 6, 9}},
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
            Point& p = OB->points[i];
            p.x = start[i].x, p.y = start[i].y, p.z = start[i].z;
        }
    }
}

TEST_F(TransformModes, NothingMovesBeyondTheCutoffsMoreThanAtThem) {
    command(1062);
    for (const double x : {1.5, 1.0}) {
        box.left.x = projection.toScreen({1, 0, 0}).x;
        box.right.x = projection.toScreen({x, 0, 0}).x;
        drag(300, 200, 0, 180, left);
        expectNear(point(0), start[0], 0);
        expectNear(point(1), {2, 5, 1});
    }
    EXPECT_EQ(shown.windowTitle, "the box has no extent along this axis");
}

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
    command(362);
    mouse(513 + 60, 70, right); // the press alone sets z
    EXPECT_EQ(box.right.z, 60);
    mouse(513 + 91, 81, 0);
    expectNear(box.right, {projection.toScreen({2, 0, 0}).x, 81, 91}, 0);
    expectNear(box.left, {50, 60, box.left.z}, 0);
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

TEST_F(TransformModes, NormalsGoWithTheirFacesAndAreCopiedWhereShared) {
    OB->addNormal(0, 0, 1);
    OB->addNormal(2, 0, 0);
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
    expectNear(normal(0, 1), {0, 0, -2});
    expectNear(normal(1, 0), {0, 0, 1}, 0);
    // A plane through x and z at 45 degrees, stretched along x, leans over; its normal with it.
    *OB->faces[0].q[0].d = {std::sqrt(0.5), 0, std::sqrt(0.5)};
    command(365);
    drag(300, 200, 100, 0, left);
    expectNear(normal(0, 0), {1 / std::sqrt(5), 0, 2 / std::sqrt(5)});
}

} // namespace
} // namespace polyfab::test
