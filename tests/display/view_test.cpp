// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view.h"

#include "display/affine.h"
#include "display/box.h"
#include "tests/display/meshes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace polyfab::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class ViewTest : public testing::Test {
  protected:
    void SetUp() override {
        view.client = {801, 400};
        resetView();
    }
    void TearDown() override {
        view.client = {};
        resetView();
    }
    /// Any rotation, not quite upright: many small turns wear it out, and it is taken as it is.
    static void turn(std::mt19937& random) {
        std::uniform_real_distribution<double> part(-0.3, 0.3);
        for (int i = 0; i < 9; ++i) view.rotation[i / 3][i % 3] = part(random) + (i % 4 == 0);
        applyView();
    }
};

void expectNear(const Vec3& a, const Vec3& b, double tolerance) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(along(a, axis), along(b, axis), tolerance) << axis;
    }
}

TEST_F(ViewTest, InverseLeadsBackToTheWorld) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int round = 0; round < 2000; ++round) {
        view.scale = std::pow(10, 12 * unit(random));
        view.offset = {500 * unit(random), 500 * unit(random), 500 * unit(random)};
        turn(random);
        const double size = 400 / view.scale;
        const Vec3 p{unit(random) * size, unit(random) * size, unit(random) * size};
        expectNear(projection.toWorld(projection.toScreen(p)), p, 1e-9 * size);
    }
}

TEST_F(ViewTest, FitCentresInBothPanesAndTouchesTheMargin) {
    const Size clients[] = {{801, 400}, {300, 900}, {2000, 100}, {61, 31}};
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        OwnMesh mesh;
        fillRandom(mesh, random, 20, 0);
        // Flat meshes too: no extent along one axis.
        for (int i = 0; round % 5 == 0 && i < mesh.np; ++i) mesh.points[i].y = 2;
        resizeView(clients[round % 4]);
        turn(random);
        fitView(mesh);
        transformPoints(mesh);
        const Panes panes = panesOf(view.client);
        const int sides[] = {panes.leftWidth, panes.height, panes.rightWidth};
        double share = 0;
        for (int axis = 0; axis < 3; ++axis) {
            double low = infinity, high = -infinity;
            for (int i = 0; i < mesh.np; ++i) {
                const Point& p = mesh.points[i];
                low = std::min(low, along(Vec3{p.sx, p.sy, p.sz}, axis));
                high = std::max(high, along(Vec3{p.sx, p.sy, p.sz}, axis));
            }
            EXPECT_NEAR(low + high, sides[axis] - 1, 1e-6) << axis;
            share = std::max(share, (high - low) / sides[axis]);
        }
        EXPECT_NEAR(share, 0.88, 1e-9);
    }
}

TEST_F(ViewTest, FitLooksAtTheCornersOfLiveFacesOnly) {
    OwnMesh mesh;
    addPoints(mesh,
              {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {900, 0, 0}, {infinity, NAN, 0}, {0, 1e308, 0}});
    addFace(mesh, {0, 1, 2});
    addFace(mesh, {0, 1, 3})->q = nullptr;
    addFace(mesh, {0, 4, 5}); // no position that counts but the origin
    addFace(mesh, {1})->q->p = nullptr;
    fitView(mesh);
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400);
    // Without a live face all points count.
    for (int i = 0; i < mesh.nf; ++i) mesh.faces[i].q = nullptr;
    fitView(mesh);
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400 / 900);
}

TEST_F(ViewTest, FitOfUnusualMeshesShowsWhatThereIs) {
    const std::vector<std::array<double, 3>> cases[] = {
        {},
        {{3, 4, 5}},
        {{1e20, -1e20, 1e20}},
        {{-1e300, 1e300, 0}, {1e300, -1e300, 1e300}},
        {{0, 0, 1e-300}, {0, 0, 2e-300}},
        {{4e-324, 0, 0}, {0, 0, 0}},
        {{NAN, 0, 0}, {0, infinity, 0}, {1.7e308, 1.7e308, 1.7e308}},
        {{1e20, 0, 0}, {1e20 + 16384, 0, 0}},
    };
    for (const auto& positions : cases) {
        for (const Size client : {Size{800, 400}, Size{0, 0}, Size{1, 1}}) {
            OwnMesh mesh;
            addPoints(mesh, positions);
            resizeView(client);
            fitView(mesh);
            transformPoints(mesh);
            ASSERT_TRUE(std::isfinite(view.scale) && view.scale > 0) << positions.size();
            for (int i = 0; i < mesh.np; ++i) {
                const Point& p = mesh.points[i];
                if (!(std::abs(p.x) <= 1e300) || !(std::abs(p.y) <= 1e300)) continue;
                EXPECT_NEAR(p.sx, client.width / 4.0, client.width / 4.0 + 2) << p.x;
                EXPECT_NEAR(p.sy, client.height / 2.0, client.height / 2.0 + 2) << p.y;
                EXPECT_NEAR(p.sz, client.width / 4.0, client.width / 4.0 + 2) << p.z;
            }
        }
    }
}

TEST_F(ViewTest, ResizeKeepsTheMiddleAndFollowsTheSmallerSide) {
    view.offset = {70, 30, -20};
    applyView();
    const double scale = view.scale;
    const auto middles = [] {
        const Panes panes = panesOf(view.client);
        return projection.toWorld(
            {(panes.leftWidth - 1) / 2.0, (panes.height - 1) / 2.0, (panes.rightWidth - 1) / 2.0});
    };
    const Vec3 before = middles();
    resizeView({1601, 600});
    expectNear(middles(), before, 1e-12);
    EXPECT_DOUBLE_EQ(view.scale, 1.5 * scale); // smaller sides: 400, then 600
    for (const Size client : {Size{0, 0}, Size{5, 0}, Size{-3, 7}, Size{801, 400}}) {
        resizeView(client);
    }
    EXPECT_NEAR(view.scale, scale, 1e-12);
    expectNear(view.offset, {70, 30, -20}, 1e-6);
}

/// How the view shows a direction of the world, in world units along the screen's axes.
Vec3 shown(const Vec3& direction) { return screenAxes()(direction); }

TEST_F(ViewTest, TurnsAreRightHandedAboutTheScreensOrTheObjectsAxes) {
    constexpr double quarter = 1.5707963267948966;
    struct Row {
        int axis;
        Vec3 x, y, z; ///< how the world's axes are shown after a quarter turn
    };
    // Upright, the world's axes are shown as right, up (-y) and towards the viewer (-z).
    const Row rows[] = {{0, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
                        {1, {0, 0, -1}, {0, -1, 0}, {-1, 0, 0}},
                        {2, {0, 1, 0}, {1, 0, 0}, {0, 0, -1}}};
    for (const Row& row : rows) {
        for (const bool screenAxis : {true, false}) {
            resetView();
            turnView(row.axis, quarter, screenAxis);
            expectNear(shown({1, 0, 0}), row.x, 1e-15);
            expectNear(shown({0, 1, 0}), row.y, 1e-15);
            expectNear(shown({0, 0, 1}), row.z, 1e-15);
        }
    }
    // After a quarter about z the object's x axis is shown pointing down.
    for (const bool screenAxis : {true, false}) {
        resetView();
        turnView(2, quarter, true);
        turnView(0, quarter, screenAxis);
        expectNear(shown({1, 0, 0}), screenAxis ? Vec3{0, 0, 1} : Vec3{0, 1, 0}, 1e-15);
    }
}

TEST_F(ViewTest, NoChainOfTurnsDriftsOrLosesTheMiddle) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> unit(-1, 1);
    view.offset = {13, -70, 255};
    applyView();
    const Vec3 middle = projection.toWorld(middleOfPanes());
    for (int i = 0; i < 20000; ++i) turnView(i % 3, 3 * unit(random), i % 2 == 0);
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            double product = 0;
            for (int j = 0; j < 3; ++j) product += view.rotation[i][j] * view.rotation[k][j];
            EXPECT_NEAR(product, i == k, 1e-15);
        }
    }
    EXPECT_NEAR(determinantOf(screenAxes()), 1, 1e-15);
    expectNear(projection.toWorld(middleOfPanes()), middle, 1e-9);
    resetAttitude();
    expectNear(shown({1, 2, 3}), {1, -2, -3}, 1e-15);
    expectNear(projection.toWorld(middleOfPanes()), middle, 1e-9);
}

TEST_F(ViewTest, PanAndZoomMoveThePictureAndTheBox) {
    box = {{10, 20, 30}, {110, 220, 330}};
    const Vec3 below = projection.toWorld({50, 60, 70});
    const Vec3 left = projection.toWorld(box.left);
    const Vec3 right = projection.toWorld(box.right);
    zoomView(3, {50, 60, 70});
    expectNear(projection.toWorld({50, 60, 70}), below, 1e-12);
    EXPECT_DOUBLE_EQ(view.scale, 3 * 200);
    panView({5, -6, 7});
    expectNear(projection.toWorld({55, 54, 77}), below, 1e-12);
    resizeView({1601, 900});
    expectNear(projection.toWorld(box.left), left, 1e-12);
    expectNear(projection.toWorld(box.right), right, 1e-12);
    centreOrigin();
    expectNear(projection.toScreen({0, 0, 0}), middleOfPanes(), 0);
    // Out of the range of scales nothing happens, and the way back is open.
    for (const double factor : {1e10, 1e-10}) {
        for (int i = 0; i < 100; ++i) zoomView(factor, {1e5, 0, 0});
        EXPECT_TRUE(std::isfinite(projection.toScreen({0, 0, 0}).x));
        EXPECT_TRUE(std::isfinite(projection.toWorld({0, 0, 0}).x));
    }
}

TEST_F(ViewTest, TheSelectedFacesAreFitted) {
    OwnMesh mesh;
    addPoints(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {900, 0, 0}});
    addFace(mesh, {0, 1, 2});
    addFace(mesh, {0, 1, 3})->selected = 0;
    EXPECT_TRUE(fitViewToSelected(mesh));
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400);
    mesh.faces[0].selected = 0;
    EXPECT_FALSE(fitViewToSelected(mesh));
    EXPECT_DOUBLE_EQ(view.scale, 0.88 * 400);
}

} // namespace
} // namespace polyfab::test
