// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay.h"

#include "display/look.h"
#include "display/pane_images.h"
#include "mesh/edges.h"
#include "tests/display/pane_fixture.h"

#include <set>

namespace polyfab::test {
namespace {

class OverlayTest : public PaneTest {
  protected:
    OverlayTest() : PaneTest({401, 200}) {
        addCube();
        fitView(*OB);
        displayOptions.current = displayOptions.settable = false;
    }

    /// The texts in a picture made anew.
    std::multiset<std::string> texts(const Markers& markers = {}) {
        shown.texts.clear();
        redraw(markers);
        std::multiset<std::string> found;
        for (const FakePlatform::Text& text : shown.texts) found.insert(text.text);
        return found;
    }
};

TEST_F(OverlayTest, NormalsPointToWhereTheFacesRunAnticlockwise) {
    displayOptions.normals = true;
    for (const double size : {1.0, 1e-170, 1e160}) {
        for (int i = 0; i < OB->np; ++i) {
            Point& p = OB->points[i];
            p.x = std::copysign(size, p.x);
            p.y = std::copysign(size, p.y);
            p.z = std::copysign(size, p.z);
        }
        fitView(*OB);
        zoomView(0.5, middleOfPanes());
        for (const bool outwards : {true, false}) {
            const Bitmap& picture = redraw();
            const int left = static_cast<int>(std::lround(OB->points[0].sx));
            const int side = std::min(left, 200 - left); // the cube's in the left pane
            std::ptrdiff_t beside = 0;
            for (int y = 0; y < client.height; ++y) {
                const auto row = picture.pixels.begin() + y * picture.width + side;
                beside += std::count(row - 10, row - 4, look.normal.color);
            }
            EXPECT_EQ(beside > 0, outwards) << size;
            for (int i = 0; i < OB->nf; ++i) reverseFace(OB->faces[i]);
        }
    }
}

TEST_F(OverlayTest, WhatIsCurrentShowsThoughItIsHidden) {
    displayOptions.current = displayOptions.hideFacingAway = true;
    OB->faces[0].selected = 0;
    for (OB->curface = 0; OB->curface < OB->nf; ++OB->curface) {
        const Bitmap& picture = redraw();
        EXPECT_GT(count(picture, look.currentFace.color), 40) << OB->curface;
    }
}

TEST_F(OverlayTest, OneSettablePointMayLieAtTheOrigin) {
    displayOptions.settable = true;
    EXPECT_GT(count(redraw({0, 0, {Vec3{0.5, 0.5, 0.5}, Vec3{}}}), look.settable.color), 40);
}

TEST_F(OverlayTest, VertexesAreHollowAndSelectedOnesFilled) {
    // Without edges the squares alone are seen: two by two points lie behind each other.
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = i == 5; // x = 1
    const auto ink = [&](bool all, bool selected) {
        displayOptions.vertexes = all;
        displayOptions.selectedVertexes = selected;
        Bitmap picture = plainPicture(client.width, client.height, look.background);
        for (const bool left : {true, false}) drawOverlay(*OB, makePane(picture, left), {});
        return count(picture, look.vertex.color);
    };
    redraw();
    EXPECT_EQ(ink(false, false), 0);
    EXPECT_EQ(ink(false, true), (2 + 4) * 25);
    EXPECT_EQ(ink(true, true), 2 * 16 + (2 + 4) * 25);
    // Turned, all eight stand apart, and in each pane one belongs to hidden faces only.
    turnView(30, 20, -15);
    redraw();
    EXPECT_EQ(ink(true, false), (8 + 8) * 16);
    displayOptions.hideFacingAway = true;
    EXPECT_EQ(ink(true, false), (7 + 7) * 16);
}

TEST_F(OverlayTest, NumbersCountFromOneAndAreNeverTooMany) {
    displayOptions.numbers = true;
    turnView(30, 20, -15);
    std::multiset<std::string> expected;
    for (int i = 1; i <= 8; ++i) {
        for (int k = 0; k < (i <= 6 ? 4 : 2); ++k) expected.insert(std::to_string(i));
    }
    EXPECT_EQ(texts(), expected);
    // Far beyond what can be read; the faces stay few.
    for (int i = 0; i < 2000; ++i) OB->addPoint(0.0004 * i, 0, 0, false);
    EXPECT_EQ(texts().size(), 12U);
    OB->np = 8;
    panView({0, 1e6, 0}); // out of the panes
    EXPECT_TRUE(texts().empty());
}

TEST_F(OverlayTest, TheGridsStepIsRoundAndReadable) {
    displayOptions.grid = true;
    const std::pair<double, const char*> cases[] = {{50, "grid 1"},      {20, "grid 2"},
                                                    {12, "grid 5"},      {6, "grid 10"},
                                                    {5e6, "grid 1e-05"}, {5e-8, "grid 1e+09"}};
    for (const auto& [scale, label] : cases) {
        view.scale = scale;
        view.offset = {99, 99, 99};
        applyView();
        EXPECT_EQ(texts(), (std::multiset<std::string>{label, label}));
        // The lines of the top row of the left pane; each is a pixel.
        const Bitmap& picture = redraw();
        const auto top = picture.pixels.begin();
        const auto lines = std::count(top, top + 200, look.grid.color);
        EXPECT_TRUE(lines >= 2 && lines <= 7) << lines;
    }
}

TEST_F(OverlayTest, NoPlaceTooFarAndNoViewTooOdd) {
    bool* const switches = reinterpret_cast<bool*>(&displayOptions);
    std::fill_n(switches, sizeof(DisplayOptions) / sizeof(bool), true);
    OB->faces[3].q[1].p = nullptr;
    OB->faces[4].n = 30000;
    for (const double odd : {nan, infinity, 1e300, -1e12, 0.0}) {
        OB->points[0].x = OB->points[1].z = odd;
        box.left = {odd, -odd, odd};
        for (const auto& [index, scale] :
             {std::pair(0, 50.0), {-2, 1e300}, {14, odd}, {1 << 30, 1e-300}}) {
            OB->curface = OB->curvertex = index;
            view.scale = scale;
            applyView();
            const Bitmap& picture = redraw({index, index, {Vec3{odd, 0, 0}, Vec3{1, odd, 0}}});
            EXPECT_EQ(count(picture, look.divider), client.height);
        }
    }
}

} // namespace
} // namespace polyfab::test
