// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view.h"

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
    /// Turns the view by any angles.
    static void turn(double yaw, double pitch) {
        const double c = std::cos(yaw), s = std::sin(yaw);
        const double d = std::cos(pitch), t = std::sin(pitch);
        const double turned[3][3] = {{c, 0, s}, {t * s, d, -t * c}, {-d * s, t, d * c}};
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < 3; ++k) view.rotation[i][k] = turned[i][k];
        }
        applyView();
    }
};

/// Screen box of the points.
struct Extent {
    Vec3 low{infinity, infinity, infinity};
    Vec3 high{-infinity, -infinity, -infinity};

    explicit Extent(Mesh& mesh) {
        transformPoints(mesh);
        for (int i = 0; i < mesh.np; ++i) {
            const Point& p = mesh.points[i];
            low = {std::min(low.x, p.sx), std::min(low.y, p.sy), std::min(low.z, p.sz)};
            high = {std::max(high.x, p.sx), std::max(high.y, p.sy), std::max(high.z, p.sz)};
        }
    }
};

TEST_F(ViewTest, RightIsRightDownIsDownAndDepthGrowsAway) {
    const Vec3 origin = projection.toScreen({0, 0, 0});
    const Vec3 moved = projection.toScreen({1, 1, 1});
    EXPECT_DOUBLE_EQ(moved.x - origin.x, view.scale);
    EXPECT_DOUBLE_EQ(moved.y - origin.y, -view.scale);
    EXPECT_DOUBLE_EQ(moved.z - origin.z, -view.scale);
}

TEST_F(ViewTest, InverseLeadsBackToTheWorld) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int round = 0; round < 2000; ++round) {
        turn(4 * unit(random), 4 * unit(random));
        view.scale = std::pow(10, 12 * unit(random));
        view.offset = {500 * unit(random), 500 * unit(random), 500 * unit(random)};
        // A rotation that many small turns have worn out is inverted as it is.
        view.rotation[0][1] += 1e-3 * unit(random);
        applyView();
        const Vec3 p{unit(random), unit(random), unit(random)};
        const double size = 400 / view.scale;
        const Vec3 back =
            projection.toWorld(projection.toScreen({p.x * size, p.y * size, p.z * size}));
        EXPECT_NEAR(back.x, p.x * size, 1e-9 * size);
        EXPECT_NEAR(back.y, p.y * size, 1e-9 * size);
        EXPECT_NEAR(back.z, p.z * size, 1e-9 * size);
    }
}

TEST_F(ViewTest, FitCentresInBothPanesAndTouchesTheMargin) {
    const Size clients[] = {{801, 400}, {300, 900}, {2000, 100}, {61, 31}};
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        OwnMesh mesh;
        fillRandom(mesh, random, 20, 0);
        // Flat meshes too: no extent along one axis.
        for (int i = 0; round % 4 == 0 && i < mesh.np; ++i) mesh.points[i].y = 2;
        resizeView(clients[round % 4]);
        turn(round, 2 * round);
        fitView(mesh);
        const Extent extent(mesh);
        const Panes panes = panesOf(view.client);
        const double share[] = {(extent.high.x - extent.low.x) / panes.leftWidth,
                                (extent.high.y - extent.low.y) / panes.height,
                                (extent.high.z - extent.low.z) / panes.rightWidth};
        EXPECT_NEAR(*std::max_element(share, share + 3), 0.88, 1e-9);
        EXPECT_NEAR(extent.low.x + extent.high.x, panes.leftWidth - 1, 1e-6);
        EXPECT_NEAR(extent.low.y + extent.high.y, panes.height - 1, 1e-6);
        EXPECT_NEAR(extent.low.z + extent.high.z, panes.rightWidth - 1, 1e-6);
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
        {{0, 0, 0}},
        {{3, 4, 5}},
        {{1e20, -1e20, 1e20}},
        {{-1e300, 1e300, 0}, {1e300, -1e300, 1e300}},
        {{0, 0, 1e-300}, {0, 0, 2e-300}},
        {{4e-324, 0, 0}, {0, 0, 0}},
        {{NAN, 0, 0}, {0, infinity, 0}, {1.7e308, 1.7e308, 1.7e308}},
        {{1e9, 1e9, 1e9}, {1e9 + 1, 1e9, 1e9}},
        {{1e20, 0, 0}, {1e20 + 16384, 0, 0}},
    };
    for (const auto& positions : cases) {
        for (const Size client : {Size{800, 400}, Size{0, 0}, Size{1, 1}}) {
            OwnMesh mesh;
            addPoints(mesh, positions);
            resizeView(client);
            fitView(mesh);
            ASSERT_TRUE(std::isfinite(view.scale) && view.scale > 0) << positions.size();
            for (int i = 0; i < mesh.np; ++i) {
                const Point& p = mesh.points[i];
                if (!(std::abs(p.x) <= 1e300) || !(std::abs(p.y) <= 1e300)) continue;
                transformPoints(mesh);
                EXPECT_TRUE(p.sx > -2 && p.sx < client.width / 2.0 + 2) << p.x << " -> " << p.sx;
                EXPECT_TRUE(p.sy > -2 && p.sy < client.height + 2) << p.y << " -> " << p.sy;
                EXPECT_TRUE(p.sz > -2 && p.sz < client.width / 2.0 + 2) << p.z << " -> " << p.sz;
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
    resizeView({1601, 1000});
    const Vec3 after = middles();
    EXPECT_NEAR(after.x, before.x, 1e-12);
    EXPECT_NEAR(after.y, before.y, 1e-12);
    EXPECT_NEAR(after.z, before.z, 1e-12);
    EXPECT_DOUBLE_EQ(view.scale, 2 * scale); // smaller sides: 400, then 800
    for (const Size client : {Size{0, 0}, Size{5, 0}, Size{-3, 7}, Size{801, 400}})
        resizeView(client);
    EXPECT_NEAR(view.scale, scale, 1e-12);
    EXPECT_NEAR(view.offset.x, 70, 1e-6);
    EXPECT_NEAR(view.offset.z, -20, 1e-6);
}

TEST_F(ViewTest, NewPointsAndTransformedPointsAgreeToTheBit) {
    std::mt19937 random(5);
    turn(0.4, 1.1);
    OwnMesh mesh;
    fillRandom(mesh, random, 200, 0);
    const std::vector<Point> placed(mesh.points, mesh.points + mesh.np);
    transformPoints(mesh);
    for (std::size_t i = 0; i < placed.size(); ++i) {
        EXPECT_EQ(placed[i].sx, mesh.points[i].sx);
        EXPECT_EQ(placed[i].sy, mesh.points[i].sy);
        EXPECT_EQ(placed[i].sz, mesh.points[i].sz);
    }
}

} // namespace
} // namespace polyfab::test
