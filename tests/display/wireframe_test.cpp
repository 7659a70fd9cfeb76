// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/wireframe.h"

#include "display/view.h"
#include "tests/display/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace polyfab::test {
namespace {

class WireframeTest : public testing::Test {
  protected:
    void SetUp() override { start(); }
    void TearDown() override { start(); }

    static void start() {
        view.client = {};
        resetView();
    }
    /// The pixel of a pane position, counted from the left edge of its pane.
    static std::uint32_t pixel(const Bitmap& picture, bool left, double across, double down) {
        const int x = static_cast<int>(std::floor(across + 0.5))
                      + (left ? 0 : panesOf(view.client).rightStart);
        const int y = static_cast<int>(std::floor(down + 0.5));
        return picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
    }
    static std::ptrdiff_t count(const Bitmap& picture, std::uint32_t color) {
        return std::count(picture.pixels.begin(), picture.pixels.end(), color);
    }

    static constexpr Size client{241, 120};
    OwnMesh mesh;
};

/// A box of three different sides: faces 0 and 1 are its front and back.
void addBox(Mesh& mesh) {
    addPoints(
        mesh,
        {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}, {0, 0, 2}, {4, 0, 2}, {4, 3, 2}, {0, 3, 2}});
    const std::vector<int> faces[] = {{4, 5, 6, 7}, {0, 3, 2, 1}, {0, 1, 5, 4},
                                      {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    for (const auto& face : faces) addFace(mesh, face);
}

TEST_F(WireframeTest, BoxShowsItsFrontLeftAndItsSideRight) {
    addBox(mesh);
    view.client = client;
    fitView(mesh);
    const Bitmap& picture = drawPanes(mesh, client);
    ASSERT_EQ(picture.width, client.width);
    ASSERT_EQ(picture.height, client.height);
    for (int i = 0; i < mesh.np; ++i) {
        const Point& p = mesh.points[i];
        EXPECT_EQ(pixel(picture, true, p.sx, p.sy), palette.edge) << i;
        EXPECT_EQ(pixel(picture, false, p.sz, p.sy), palette.edge) << i;
    }
    // Seen along its axes the box is one rectangle in each pane and nothing else.
    const Point& low = mesh.points[4]; // at the front, left, below
    const Point& high = mesh.points[2];
    const auto steps = [](double a, double b) {
        return std::lround(std::abs(std::floor(a + 0.5) - std::floor(b + 0.5)));
    };
    EXPECT_EQ(count(picture, palette.edge),
              2 * steps(low.sx, high.sx) + 4 * steps(low.sy, high.sy) + 2 * steps(low.sz, high.sz));
    EXPECT_EQ(count(picture, palette.divider), client.height);
    EXPECT_EQ(pixel(picture, false, -1, 0), palette.divider);
    // Wider than deep, and the front (z = 2) stands left in the side view.
    EXPECT_GT(high.sx - low.sx, high.sz - low.sz);
    EXPECT_LT(low.sz, high.sz);
    EXPECT_LT(high.sy, low.sy);
}

TEST_F(WireframeTest, SharedEdgesTakeTheSelectedColour) {
    addBox(mesh);
    view.client = client;
    fitView(mesh);
    for (int i = 1; i < mesh.nf; ++i) mesh.faces[i].selected = 0;
    const Bitmap& picture = drawPanes(mesh, client);
    const Point& front = mesh.points[4];
    const Point& back = mesh.points[2];
    const double middle = (front.sy + back.sy) / 2;
    // Right pane: the front face is selected, the edges from there to the back are not.
    EXPECT_EQ(pixel(picture, false, front.sz, middle), palette.edge);
    EXPECT_EQ(pixel(picture, false, (front.sz + back.sz) / 2, front.sy), palette.unselected);
    EXPECT_EQ(pixel(picture, false, back.sz, middle), palette.unselected);
    // Left pane: the selected front lies over the back.
    EXPECT_EQ(pixel(picture, true, front.sx, middle), palette.edge);
    mesh.faces[0].q = nullptr;
    stale.edges = true;
    EXPECT_EQ(count(drawPanes(mesh, client), palette.edge), 0);
}

TEST_F(WireframeTest, OnlyWhatIsStaleIsMadeAgain) {
    addBox(mesh);
    view.client = client;
    fitView(mesh);
    const Bitmap first = drawPanes(mesh, client);
    for (int i = 0; i < mesh.np; ++i) mesh.points[i].x += 1;
    EXPECT_EQ(drawPanes(mesh, client).pixels, first.pixels);
    stale.points = true;
    EXPECT_NE(drawPanes(mesh, client).pixels, first.pixels);
    EXPECT_EQ(drawPanes(mesh, {99, 70}).pixels.size(), std::size_t{99 * 70});
    EXPECT_EQ(view.client.width, 99);
    // More points than the edges were listed for: listed again, whoever forgot to say so.
    const auto before = count(drawPanes(mesh, client), palette.edge);
    mesh.addPoint(0, 9, 0, false);
    addFace(mesh, {3, mesh.np - 1});
    stale.picture = true;
    EXPECT_GT(count(drawPanes(mesh, client), palette.edge), before);
}

TEST_F(WireframeTest, EdgesFarBeyondThePanesStillCrossThem) {
    for (const double far : {500.0, 40000.0, 1e8, 1e15}) {
        OwnMesh cross;
        addPoints(cross, {{0, 0, 0},
                          {far, 0, 0},
                          {0, -far, 0},
                          {0, far, 0},
                          {NAN, 1, 1},
                          {-0.5, 0.2, far},
                          {-0.5, 0.8, far}});
        addFace(cross, {0, 1});
        addFace(cross, {2, 3});
        addFace(cross, {4, 0});
        addFace(cross, {5, 6});
        view.client = client;
        resetView();
        const Bitmap& picture = drawPanes(cross, client);
        const Panes panes = panesOf(client);
        // Left: half a row from a column on, and a short line; right: the column alone.
        const auto shortLine = std::lround(0.6 * view.scale) + 1;
        EXPECT_EQ(count(picture, palette.edge),
                  panes.leftWidth / 2 - 1 + panes.height + shortLine + panes.height)
            << far;
    }
}

TEST_F(WireframeTest, AnyClientSizeIsDrawn) {
    addBox(mesh);
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{2, 1}, Size{3, 0}, Size{0, 9},
                            Size{-4, -1}, Size{7, 5}, Size{7680, 40}}) {
        const Bitmap& picture = drawPanes(mesh, size);
        EXPECT_EQ(picture.width, std::max(size.width, 0));
        EXPECT_EQ(picture.height, std::max(size.height, 0));
        EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width)
                                             * static_cast<std::size_t>(picture.height));
    }
    EXPECT_GT(count(drawPanes(mesh, {7680, 40}), palette.edge), 100);
}

} // namespace
} // namespace polyfab::test
