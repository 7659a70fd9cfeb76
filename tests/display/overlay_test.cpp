// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/overlay.h"

#include "display/look.h"
#include "display/pane_images.h"
#include "tests/display/pane_fixture.h"

#include <limits>
#include <set>
#include <string>

namespace polyfab::test {
namespace {

class OverlayTest : public PaneTest {
  protected:
    OverlayTest() : PaneTest({401, 200}) {
        addCube();
        fitView(*OB);
        displayOptions.current = displayOptions.settable = false;
    }

    std::multiset<std::string> texts() const {
        std::multiset<std::string> found;
        for (const FakePlatform::Text& text : shown.texts) found.insert(text.text);
        return found;
    }
};

TEST_F(OverlayTest, EachSwitchBringsItsOwnColours) {
    OB->curface = 1;
    OB->curvertex = 3;
    OB->corners[0].edgeuse = 255;
    OB->faces[2].q = nullptr; // its four edges are loose now
    box = {{20, 20, 20}, {150, 180, 150}};
    const Markers markers{3, 0, {Vec3{0.5, 0.5, 0.5}, Vec3{}}};
    struct {
        bool DisplayOptions::*option;
        std::set<std::uint32_t> colors;
    } const cases[] = {
        {&DisplayOptions::normals, {look.normal.color}},
        {&DisplayOptions::badEdges, {look.bad.color}},
        {&DisplayOptions::looseEdges, {look.loose.color}},
        {&DisplayOptions::box, {look.box.color}},
        {&DisplayOptions::current, {look.currentFace.color}},
        {&DisplayOptions::settable, {look.settable.color}},
        {&DisplayOptions::axes, {look.axes[0].color, look.axes[1].color, look.axes[2].color}},
        {&DisplayOptions::grid, {look.grid.color}},
    };
    const Bitmap plain = redraw(markers);
    for (const auto& row : cases) {
        displayOptions.*row.option = true;
        const Bitmap& picture = redraw(markers);
        displayOptions.*row.option = false;
        for (const std::uint32_t color : row.colors) {
            EXPECT_EQ(count(plain, color), 0);
            EXPECT_GT(count(picture, color), 20);
        }
    }
    EXPECT_EQ(redraw(markers).pixels, plain.pixels);
}

TEST_F(OverlayTest, SettablePointsAppearWithTheFirstThatIsSet) {
    displayOptions.settable = true;
    EXPECT_EQ(count(redraw(), look.settable.color), 0);
    EXPECT_GT(count(redraw({-1, -1, {Vec3{}, Vec3{0.2, 0, 0}}}), look.settable.color), 20);
    EXPECT_EQ(texts(), (std::multiset<std::string>{"1", "1", "2", "2"}));
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
    EXPECT_EQ(ink(true, false), 8 * 16);
    EXPECT_EQ(ink(false, true), (2 + 4) * 25);
    EXPECT_EQ(ink(true, true), 2 * 16 + (2 + 4) * 25);
    // Turned, all eight stand apart, and in each pane one belongs to hidden faces only.
    turnView(30, 20, -15);
    redraw();
    EXPECT_EQ(ink(true, false), (8 + 8) * 16);
    displayOptions.hideFacingAway = true;
    EXPECT_EQ(ink(true, false), (7 + 7) * 16);
}

TEST_F(OverlayTest, NumbersCountFromOneAndGiveWayWhenTheyAreTooMany) {
    displayOptions.numbers = true;
    turnView(30, 20, -15);
    redraw();
    std::multiset<std::string> expected;
    for (int i = 1; i <= 8; ++i) {
        for (int k = 0; k < (i <= 6 ? 4 : 2); ++k) expected.insert(std::to_string(i));
    }
    EXPECT_EQ(texts(), expected);
    // Far beyond what can be read; the faces stay few.
    for (int i = 0; i < 2000; ++i) OB->addPoint(0.0004 * i, 0, 0, false);
    shown.texts.clear();
    redraw();
    EXPECT_EQ(shown.texts.size(), 12U);
    // Of numbers in one place only the nearest to the viewer stays: left those of the front, right
    // those of the right side.
    OB->np = 8;
    turnView(0, 0);
    view.scale *= 0.8;
    applyView();
    shown.texts.clear();
    redraw();
    const std::multiset<std::string> left = {"2", "3", "4", "5", "6", "5", "6", "7", "8"};
    std::multiset<std::string> both = {"1", "2", "3", "4", "6", "2", "4", "6", "8"};
    both.insert(left.begin(), left.end());
    EXPECT_EQ(texts(), both);
    // Out of the panes.
    view.offset.y = 1e6;
    applyView();
    shown.texts.clear();
    redraw();
    EXPECT_TRUE(shown.texts.empty());
}

TEST_F(OverlayTest, TheGridsStepIsRoundAndReadable) {
    displayOptions.grid = true;
    const struct {
        double scale;
        const char* label;
    } cases[] = {{50, "grid 1"}, {20, "grid 2"},      {12, "grid 5"},
                 {6, "grid 10"}, {5e6, "grid 1e-05"}, {5e-8, "grid 1e+09"}};
    for (const auto& row : cases) {
        view.scale = row.scale;
        view.offset = {99, 99, 99};
        applyView();
        shown.texts.clear();
        const Bitmap& picture = redraw();
        ASSERT_EQ(shown.texts.size(), 2U);
        EXPECT_EQ(shown.texts[0].text, row.label);
        // The lines of the top row of the left pane; each is a pixel.
        const auto lines =
            std::count(picture.pixels.begin(), picture.pixels.begin() + 200, look.grid.color);
        EXPECT_GE(lines, 2);
        EXPECT_LE(lines, 7);
    }
}

TEST_F(OverlayTest, NoPlaceTooFarAndNoViewTooOdd) {
    bool* const switches = reinterpret_cast<bool*>(&displayOptions);
    std::fill_n(switches, sizeof(DisplayOptions) / sizeof(bool), true);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    OB->curface = 0;
    OB->curvertex = 0;
    OB->faces[3].q[1].p = nullptr;
    OB->faces[4].n = 30000;
    for (const double odd : {nan, infinity, 1e300, -1e12, 0.0}) {
        OB->points[0].x = odd;
        OB->points[1].z = odd;
        box.left = {odd, -odd, odd};
        for (const double scale : {odd, 1e300, 1e-300, 50.0}) {
            view.scale = scale;
            applyView();
            const Bitmap& picture = redraw({3, 1, {Vec3{odd, 0, 0}, Vec3{1, odd, 0}}});
            EXPECT_EQ(count(picture, look.divider), client.height);
        }
    }
    for (const int index : {-2, 6, 1 << 30}) {
        OB->curface = OB->curvertex = index + 8 * (index > 0);
        redraw({index, index, {}});
    }
}

} // namespace
} // namespace polyfab::test
