// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/wireframe.h"

#include "display/look.h"
#include "tests/display/meshes.h"
#include "tests/display/pane_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace polyfab::test {
namespace {

/// A box of three different sides in a fitted view; faces 0 and 1 are its back and front.
class WireframeTest : public PaneTest {
  protected:
    WireframeTest() : PaneTest({241, 120}) {
        addCube();
        for (int i = 0; i < OB->np; ++i) {
            OB->points[i].x *= 2;
            OB->points[i].y *= 1.5;
        }
        fitView(*OB);
    }

    const Bitmap& draw() { return drawPanes(*OB, client); }

    /// The pixel of the last picture at a position of a pane.
    std::uint32_t pixel(bool left, double across, double down) {
        const int start = left ? 0 : panesOf(view.client).rightStart;
        const auto x = static_cast<int>(std::floor(across + 0.5)) + start;
        const auto y = static_cast<int>(std::floor(down + 0.5));
        return draw().pixels.at(static_cast<std::size_t>(y * client.width + x));
    }
};

TEST_F(WireframeTest, BoxShowsItsFrontLeftAndItsSideRight) {
    const auto ink = count(draw(), look.selected.color);
    for (int i = 0; i < OB->np; ++i) {
        const Point& p = OB->points[i];
        EXPECT_EQ(pixel(true, p.sx, p.sy), look.selected.color) << i;
        EXPECT_EQ(pixel(false, p.sz, p.sy), look.selected.color) << i;
    }
    // Seen along its axes the box is one rectangle in each pane and nothing else.
    const Point& low = OB->points[4]; // at the front, left, below
    const Point& high = OB->points[3];
    const auto steps = [](double a, double b) {
        return std::lround(std::abs(std::floor(a + 0.5) - std::floor(b + 0.5)));
    };
    EXPECT_EQ(ink,
              2 * steps(low.sx, high.sx) + 4 * steps(low.sy, high.sy) + 2 * steps(low.sz, high.sz));
    EXPECT_EQ(count(draw(), look.divider), client.height);
    EXPECT_EQ(pixel(false, -1, 0), look.divider);
    // Right is right, up is up, and the front stands left in the side view.
    EXPECT_LT(low.sx, high.sx);
    EXPECT_LT(low.sz, high.sz);
    EXPECT_LT(high.sy, low.sy);
}

TEST_F(WireframeTest, SharedEdgesTakeTheSelectedColour) {
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = i == 1;
    displayOptions.unselectedGrey = true;
    draw();
    const Point& front = OB->points[4];
    const Point& back = OB->points[3];
    const double middle = (front.sy + back.sy) / 2;
    // Right pane: the front face is selected, the edges from there to the back are not.
    EXPECT_EQ(pixel(false, front.sz, middle), look.selected.color);
    EXPECT_EQ(pixel(false, (front.sz + back.sz) / 2, front.sy), look.unselectedGrey.color);
    EXPECT_EQ(pixel(false, back.sz, middle), look.unselectedGrey.color);
    // Left pane: the selected front lies over the back.
    EXPECT_EQ(pixel(true, front.sx, middle), look.selected.color);
    OB->faces[1].q = nullptr;
    stale.edges = true;
    EXPECT_EQ(count(draw(), look.selected.color), 0);
}

TEST_F(WireframeTest, FacesThatFaceAwayAreHiddenInTheirPane) {
    turnView(30, 20, -15);
    redraw();
    displayOptions.hideFacingAway = true;
    // Faces of the cube by the axis that they look along: -z (away), z, -y, y, -x, x.
    constexpr bool left[] = {false, true, false, true, true, false};
    constexpr bool right[] = {false, true, false, true, false, true};
    for (int i = 0; i < OB->nf; ++i) {
        EXPECT_EQ(isShown(OB->faces[i], true), left[i]) << i;
        EXPECT_EQ(isShown(OB->faces[i], false), right[i]) << i;
    }
    // The corner that only hidden faces have is seen no more.
    const Point far = OB->points[1];
    EXPECT_EQ(pixel(true, far.sx, far.sy), look.selected.color);
    redraw();
    EXPECT_EQ(pixel(true, far.sx, far.sy), look.background);
    // What is seen edge-on is shown, what is deleted is not.
    turnView(0, 0);
    redraw();
    for (const int edgeOn : {2, 3, 4, 5}) EXPECT_TRUE(isShown(OB->faces[edgeOn], true)) << edgeOn;
    for (const int edgeOn : {0, 1, 2, 3}) EXPECT_TRUE(isShown(OB->faces[edgeOn], false)) << edgeOn;
    OB->faces[1].q = nullptr;
    displayOptions.hideFacingAway = false;
    EXPECT_FALSE(isShown(OB->faces[1], true));
    // Turning the view alone changes what is hidden.
    displayOptions.hideFacingAway = true;
    redraw();
    turnView(180, 0);
    EXPECT_GT(count(draw(), look.selected.color), 0);
    EXPECT_EQ(draw().pixels, Bitmap(redraw()).pixels);
}

TEST_F(WireframeTest, APictureOwesNothingToThoseBefore) {
    OB->faces[1].selected = 0;
    OB->curface = 2;
    bool* const switches = reinterpret_cast<bool*>(&displayOptions);
    constexpr std::size_t count = sizeof(DisplayOptions) / sizeof(bool);
    std::vector<Bitmap> alone;
    for (std::size_t i = 0; i < count; ++i) {
        displayOptions = {};
        switches[i] = !switches[i];
        alone.push_back(redraw());
    }
    for (std::size_t i = count; i-- > 0;) {
        std::fill_n(switches, count, i % 2 == 0);
        turnView(40, 30);
        redraw();
        turnView(0, 0);
        displayOptions = {};
        switches[i] = !switches[i];
        EXPECT_EQ(redraw().pixels, alone[i].pixels) << i;
    }
}

TEST_F(WireframeTest, OnlyWhatIsStaleIsMadeAgain) {
    const Bitmap first = draw();
    for (int i = 0; i < OB->np; ++i) OB->points[i].x += 1;
    EXPECT_EQ(draw().pixels, first.pixels);
    stale.points = true;
    EXPECT_NE(draw().pixels, first.pixels);
    // More points than the edges were listed for: listed again, whoever forgot to say so.
    const auto before = count(draw(), look.selected.color);
    OB->addPoint(0, 1, 0, false);
    addFace(*OB, {3, OB->np - 1});
    stale.picture = true;
    EXPECT_GT(count(draw(), look.selected.color), before);
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
        EXPECT_EQ(count(drawPanes(cross, client), look.selected.color),
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
    EXPECT_GT(count(drawPanes(*OB, {7680, 40}), look.selected.color), 100);
}

} // namespace
} // namespace polyfab::test
