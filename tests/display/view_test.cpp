// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/screen_positions.h"
#include "tests/display/pane_fixture.h"
#include "tests/support/near.h"

namespace polyfab::test {
namespace {

class ViewTest : public PaneTest {
  protected:
    ViewTest() : PaneTest({801, 400}) {}

    double unit() { return random.below(20001) / 10000.0 - 1; }
    /// Any rotation, not quite upright: many small turns wear it out, and it is taken as it is.
    void turn() {
        for (int i = 0; i < 9; ++i) view.rotation[i / 3][i % 3] = 0.3 * unit() + (i % 4 == 0);
        applyView();
    }

    RandomMesh random{7};
};

TEST_F(ViewTest, FitCentresInBothPanesAndTouchesTheMargin) {
    const Size clients[] = {{801, 400}, {300, 900}, {2000, 100}, {61, 31}};
    for (int round = 0; round < 100; ++round) {
        random.fill(20, 0, 1);
        // Flat meshes too: no extent along one axis.
        for (int i = 0; round % 5 == 0 && i < OB->np; ++i) OB->points[i].y = 2;
        resizeView(clients[round % 4]);
        turn();
        fitView(*OB);
        transformPoints(*OB);
        const Panes panes = panesOf(view.client);
        const int sides[] = {panes.leftWidth, panes.height, panes.rightWidth};
        double share = 0;
        for (int axis = 0; axis < 3; ++axis) {
            double Point::*const at = std::array{&Point::sx, &Point::sy, &Point::sz}[axis];
            const auto [low, high] = std::minmax_element(
                OB->points, OB->points + OB->np, [&](auto& a, auto& b) { return a.*at < b.*at; });
            EXPECT_NEAR(low->*at + high->*at, sides[axis] - 1, 1e-6) << axis;
            share = std::max(share, (high->*at - low->*at) / sides[axis]);
        }
        EXPECT_NEAR(share, 0.88, 1e-9);
    }
}

TEST_F(ViewTest, FitLooksAtTheCornersOfLiveOrSelectedFaces) {
    addPoints({{0, 0, 0}, {1, 0, 0}, {0, 3, 0}, {900, 0, 0}, {infinity, nan, 0}, {0, 1e308, 0}});
    addFace({0, 1, 2});
    addFace({0, 3})->q = nullptr;
    addFace({0, 4, 5}); // no position that counts but the origin
    addFace({1})->q->p = nullptr;
    addFace({0, 1});
    fitView(*OB);
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400 / 3);
    OB->faces[0].selected = 0;
    EXPECT_TRUE(fitViewToSelected(*OB));
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400);
    // Without a live face all points count.
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].q = nullptr;
    EXPECT_FALSE(fitViewToSelected(*OB));
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400);
    fitView(*OB);
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400 / 900);
}

TEST_F(ViewTest, FitOfUnusualMeshesShowsWhatThereIs) {
    const std::vector<std::array<double, 3>> cases[] = {
        {},
        {{-1e300, 1e300, 0}, {1e300, -1e300, 1e300}},
        {{0, 0, 1e-300}, {0, 0, 2e-300}},
        {{nan, 0, 0}, {0, infinity, 0}, {1.7e308, 1.7e308, 1.7e308}},
        {{1e20, 0, 0}, {1e20 + 16384, 0, 0}},
    };
    for (const auto& positions : cases) {
        emptyMesh();
        addPoints(positions);
        fitView(*OB);
        transformPoints(*OB);
        ASSERT_TRUE(std::isfinite(view.scale) && view.scale > 0) << positions.size();
        for (const Point* p = OB->points; p != OB->points + OB->np; ++p) {
            if (!(std::abs(p->x) <= 1e300) || !(std::abs(p->y) <= 1e300)) continue;
            EXPECT_NEAR(p->sx, 200, 202) << p->x;
            EXPECT_NEAR(p->sy, 200, 202) << p->y;
        }
    }
}

TEST_F(ViewTest, ResizeKeepsTheMiddleAndFollowsTheSmallerSide) {
    panView({70, 30, -20});
    const Vec3 offset = view.offset;
    const Vec3 before = projection.toWorld(middleOfPanes());
    resizeView({1601, 600});
    expectNear(projection.toWorld(middleOfPanes()), before, 1e-12);
    EXPECT_DOUBLE_EQ(view.scale, 300); // smaller sides: 400, then 600
    for (const Size size : {Size{0, 0}, Size{5, 0}, Size{-3, 7}, client}) resizeView(size);
    EXPECT_NEAR(view.scale, 200, 1e-12);
    expectNear(view.offset, offset, 1e-6);
}

/// How the view shows a direction of the world, in world units along the screen's axes.
Vec3 shownAs(const Vec3& direction) { return screenAxes()(direction); }

TEST_F(ViewTest, NoChainOfTurnsDriftsOrLosesTheMiddle) {
    panView({13, -70, 255});
    const Vec3 middle = projection.toWorld(middleOfPanes());
    for (int i = 0; i < 20000; ++i) polyfab::turnView(i % 3, 3 * unit(), i % 2 == 0);
    const Vec3 x = shownAs({1, 0, 0}), y = shownAs({0, 1, 0}), z = shownAs({0, 0, 1});
    expectNear({x.y * y.z - x.z * y.y, x.z * y.x - x.x * y.z, x.x * y.y - x.y * y.x}, z, 1e-15);
    EXPECT_NEAR(x.x * x.x + x.y * x.y + x.z * x.z, 1, 1e-15);
    expectNear(projection.toWorld(middleOfPanes()), middle, 1e-9);
    resetAttitude();
    expectNear(shownAs({1, 2, 3}), {1, -2, -3}, 1e-15);
    expectNear(projection.toWorld(middleOfPanes()), middle, 1e-9);
}

TEST_F(ViewTest, ZoomsEndWhereNumbersDo) {
    // Out of the range of scales nothing happens, and the way back is open.
    for (const double factor : {1e10, 1e-10}) {
        for (int i = 0; i < 100; ++i) zoomView(factor, {1e5, 0, 0});
        EXPECT_TRUE(std::isfinite(projection.toScreen({0, 0, 0}).x));
        EXPECT_TRUE(std::isfinite(projection.toWorld({0, 0, 0}).x));
    }
}

using BoxTest = ViewTest;

TEST_F(BoxTest, OnlyLiveFacesWithPositionsCount) {
    EXPECT_FALSE(fitBox(*OB, false));
    addCube();
    addPoints({{50, 50, 50}, {nan, 0, 0}});
    addFace({0, 8, 1})->q = nullptr;
    addFace({0, 9, 1});
    for (int f = 0; f < OB->nf; ++f) OB->faces[f].selected = 0;
    EXPECT_FALSE(fitBox(*OB, true));
    EXPECT_EQ(box.right.x, 0);
    OB->faces[0].selected = 1; // the side z = -1
    // One world unit is 200 pixels; the middles are pixel 199.5.
    for (const bool selected : {true, false}) {
        ASSERT_TRUE(fitBox(*OB, selected));
        EXPECT_EQ(std::pair(box.left.x, box.right.x), std::pair(-0.5, 399.5));
        EXPECT_EQ(std::pair(box.left.z, box.right.z), std::pair(selected ? 399.5 : -0.5, 399.5));
        for (int f = 0; f < 6; ++f) EXPECT_EQ(inBox(OB->faces[f]), f == 0 || !selected) << f;
    }
}

} // namespace
} // namespace polyfab::test
