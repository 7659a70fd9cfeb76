// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/wireframe.h"

#include "display/view.h"
#include "tests/display/meshes.h"
#include "tests/support/mesh_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace polyfab::test {
namespace {

constexpr Size client{241, 120};

/// A box of three different sides in a fitted view; faces 0 and 1 are its back and front.
class WireframeTest : public MeshTest {
  protected:
    WireframeTest() {
        addCube();
        for (int i = 0; i < OB->np; ++i) {
            OB->points[i].x *= 2;
            OB->points[i].y *= 1.5;
        }
        view.client = client;
        resetView();
        fitView(*OB);
    }
    ~WireframeTest() override {
        view.client = {};
        resetView();
    }

    const Bitmap& draw() { return drawPanes(*OB, client); }

    /// The pixel of the last picture at a position of a pane.
    std::uint32_t pixel(bool left, double across, double down) {
        const int start = left ? 0 : panesOf(view.client).rightStart;
        const auto x = static_cast<int>(std::floor(across + 0.5)) + start;
        const auto y = static_cast<int>(std::floor(down + 0.5));
        return draw().pixels.at(static_cast<std::size_t>(y * client.width + x));
    }
    static auto count(const Bitmap& picture, std::uint32_t color) {
        return std::count(picture.pixels.begin(), picture.pixels.end(), color);
    }
};

TEST_F(WireframeTest, BoxShowsItsFrontLeftAndItsSideRight) {
    const auto ink = count(draw(), palette.edge);
    for (int i = 0; i < OB->np; ++i) {
        const Point& p = OB->points[i];
        EXPECT_EQ(pixel(true, p.sx, p.sy), palette.edge) << i;
        EXPECT_EQ(pixel(false, p.sz, p.sy), palette.edge) << i;
    }
    // Seen along its axes the box is one rectangle in each pane and nothing else.
    const Point& low = OB->points[4]; // at the front, left, below
    const Point& high = OB->points[3];
    const auto steps = [](double a, double b) {
        return std::lround(std::abs(std::floor(a + 0.5) - std::floor(b + 0.5)));
    };
    EXPECT_EQ(ink,
              2 * steps(low.sx, high.sx) + 4 * steps(low.sy, high.sy) + 2 * steps(low.sz, high.sz));
    EXPECT_EQ(count(draw(), palette.divider), client.height);
    EXPECT_EQ(pixel(false, -1, 0), palette.divider);
    // Right is right, up is up, and the front stands left in the side view.
    EXPECT_LT(low.sx, high.sx);
    EXPECT_LT(low.sz, high.sz);
    EXPECT_LT(high.sy, low.sy);
}

TEST_F(WireframeTest, SharedEdgesTakeTheSelectedColour) {
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = i == 1;
    draw();
    const Point& front = OB->points[4];
    const Point& back = OB->points[3];
    const double middle = (front.sy + back.sy) / 2;
    // Right pane: the front face is selected, the edges from there to the back are not.
    EXPECT_EQ(pixel(false, front.sz, middle), palette.edge);
    EXPECT_EQ(pixel(false, (front.sz + back.sz) / 2, front.sy), palette.unselected);
    EXPECT_EQ(pixel(false, back.sz, middle), palette.unselected);
    // Left pane: the selected front lies over the back.
    EXPECT_EQ(pixel(true, front.sx, middle), palette.edge);
    OB->faces[1].q = nullptr;
    stale.edges = true;
    EXPECT_EQ(count(draw(), palette.edge), 0);
}

TEST_F(WireframeTest, OnlyWhatIsStaleIsMadeAgain) {
    const Bitmap first = draw();
    for (int i = 0; i < OB->np; ++i) OB->points[i].x += 1;
    EXPECT_EQ(draw().pixels, first.pixels);
    stale.points = true;
    EXPECT_NE(draw().pixels, first.pixels);
    // More points than the edges were listed for: listed again, whoever forgot to say so.
    const auto before = count(draw(), palette.edge);
    OB->addPoint(0, 1, 0, false);
    addFace(*OB, {3, OB->np - 1});
    stale.picture = true;
    EXPECT_GT(count(draw(), palette.edge), before);
}

TEST_F(WireframeTest, EdgesFarBeyondThePanesStillCrossThem) {
    for (const double far : {500.0, 40000.0, 1e8, 1e15}) {
        OwnMesh cross;
        addPoints(cross, {{0, 0, 0}, {far, 0, 0}, {0, -far, 0}, {0, far, 0}});
        addPoints(cross, {{NAN, 1, 1}, {-0.5, 0.2, far}, {-0.5, 0.8, far}});
        for (const auto& [a, b] : {std::pair(0, 1), {2, 3}, {4, 0}, {5, 6}}) addFace(cross, {a, b});
        resetView();
        const Panes panes = panesOf(client);
        // Left: half a row from a column on, and a short line; right: the column alone.
        const auto shortLine = std::lround(0.6 * view.scale) + 1;
        EXPECT_EQ(count(drawPanes(cross, client), palette.edge),
                  panes.leftWidth / 2 - 1 + panes.height + shortLine + panes.height)
            << far;
    }
}

TEST_F(WireframeTest, AnyClientSizeIsDrawn) {
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{2, 1}, Size{3, 0}, Size{0, 9},
                            Size{-4, -1}, Size{7, 5}, Size{7680, 40}}) {
        const Bitmap& picture = drawPanes(*OB, size);
        EXPECT_EQ(picture.width, std::max(size.width, 0));
        EXPECT_EQ(picture.height, std::max(size.height, 0));
        EXPECT_EQ(picture.pixels.size(), std::size_t(picture.width) * std::size_t(picture.height));
    }
    EXPECT_GT(count(drawPanes(*OB, {7680, 40}), palette.edge), 100);
}

} // namespace
} // namespace polyfab::test
