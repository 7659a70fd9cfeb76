// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of whole scenes against those in tests/golden. scripts/golden.sh makes them anew; look
// at each before it is kept.
#include "display/look.h"
#include "mesh/edges.h"
#include "picture/write_png.h"
#include "tests/display/pane_fixture.h"
#include "tests/support/read_png.h"

#include <cstdlib>
#include <string>

namespace polyfab::test {
namespace {

/// Draws text in a face of its own, so that pictures do not depend on the fonts of a machine.
class PlainText : public FakePlatform {
  public:
    void drawText(Bitmap& drawn, int x, int y, const std::string& words, const Font& font,
                  std::uint32_t color) override {
        // Five rows of three pixels, the upper left one in the highest bit; others are full blocks.
        constexpr std::string_view letters = "0123456789xyz";
        constexpr std::array shapes = {075557, 026227, 071747, 071717, 055711, 074717, 074757,
                                       071122, 075757, 075717, 005250, 005536, 007247, 077777};
        for (const char letter : words) {
            const int shape = shapes[std::min(letters.find(letter), letters.size())];
            for (int i = 0; i < 15; ++i) {
                if ((shape >> (14 - i) & 1) == 0) continue;
                const int row = y + (font.height - 5) / 2 + i / 3;
                drawn.pixels.at(static_cast<std::size_t>(row * drawn.width + x + i % 3)) = color;
            }
            x += 4;
        }
    }
    int textWidth(const std::string& words, const Font&) override {
        return static_cast<int>(words.size()) * 4;
    }
};

class Golden : public PaneTest {
  protected:
    Golden() : PaneTest({400, 200}) {}

    /// An open tube that widens, `around` by `along` quads; its wider half is selected.
    static void addShell(int around, int along) {
        for (int i = 0; i <= along; ++i) {
            const double size = 0.3 + 0.7 * i / along;
            for (int k = 0; k < around; ++k) {
                const double angle = 2 * M_PI * k / around;
                OB->addPoint(size * std::cos(angle), 2.0 * i / along, size * std::sin(angle),
                             false);
            }
        }
        for (int i = 0; i < along; ++i) {
            for (int k = 0; k < around; ++k) {
                const int here = i * around + k, next = i * around + (k + 1) % around;
                addFace({here, here + around, next + around, next})->selected = i >= along / 2;
            }
        }
    }

    /// Pixels whose colour the other picture of that size has neither there nor beside it.
    static int strayPixels(const Bitmap& picture, const Bitmap& other) {
        const int width = picture.width, pixels = width * picture.height;
        const auto at = [](const Bitmap& p, int i) { return p.pixels[std::size_t(i)]; };
        int count = 0;
        for (int i = width + 1; i < pixels - width - 1; ++i) {
            bool found = false;
            for (int k = 0; k < 9; ++k) {
                found |= at(other, i + (k / 3 - 1) * width + k % 3 - 1) == at(picture, i);
            }
            count += !found;
        }
        return count;
    }

    void compare(const std::string& name, const Markers& markers = {}) {
        const Bitmap& picture = redraw(markers);
        const std::string path = POLYFAB_GOLDEN "/" + name + ".png";
        if (std::getenv("POLYFAB_REFRESH_GOLDEN") != nullptr) {
            ASSERT_EQ(writePngFile({picture.width, picture.height, picture.pixels}, path), "");
            return;
        }
        const Bitmap golden = readPng(path);
        ASSERT_EQ(golden.pixels.size(), picture.pixels.size()) << path;
        // Rounding may differ from machine to machine: a few pixels move by one.
        const int differing = strayPixels(picture, golden) + strayPixels(golden, picture);
        if (differing <= 8) return;
        EXPECT_EQ(writePngFile({picture.width, picture.height, picture.pixels},
                               testing::TempDir() + name + ".png"),
                  "");
        ADD_FAILURE() << differing << " pixels differ from " << path;
    }

    PlainText text;
};

TEST_F(Golden, CubeWithEverything) {
    addCube();
    OB->faces[2].selected = OB->faces[4].selected = OB->faces[0].selected = 0;
    turnView(30, 20, 5);
    displayOptions = {.vertexes = true,
                      .selectedVertexes = true,
                      .normals = true,
                      .box = true,
                      .axes = true,
                      .grid = true,
                      .numbers = true};
    OB->curface = 1;
    OB->curvertex = 2;
    box = {{60, 170, 40}, {150, 20, 150}};
    const Markers markers{5, 1, {Vec3{1.2, 0.3, 0}, Vec3{-1.2, -0.3, 0}}};
    compare("everything", markers);
    text.scale = 2;
    compare("everything_on_a_fine_screen", markers);
}

TEST_F(Golden, HalfSelectedShell) {
    addShell(16, 12);
    turnView(25, 35, 10);
    compare("half_selected");
    displayOptions.unselectedGrey = displayOptions.hideFacingAway = true;
    compare("half_selected_hidden");
}

TEST_F(Golden, BadAndLooseEdges) {
    addShell(6, 4);
    turnView(25, 35, 10);
    reverseFace(OB->faces[8]);
    OB->faces[14].q = nullptr;
    checkEdges(*OB, false, true, false);
    displayOptions.badEdges = displayOptions.looseEdges = true;
    compare("bad_and_loose");
}

TEST_F(Golden, FarInside) {
    addShell(6, 4);
    turnView(25, 35, 10);
    OB->faces[12].q = nullptr;
    const Point& corner = OB->points[13]; // to the middles of the panes
    zoomView(12, middleOfPanes());
    const Vec3 at = projection.toScreen({corner.x, corner.y, corner.z});
    panView({100 - at.x, 100 - at.y, 100 - at.z});
    OB->curface = 6;
    displayOptions.looseEdges = displayOptions.axes = displayOptions.grid = true;
    compare("far_inside", {6, 2, {}});
}

TEST_F(Golden, Numbers) {
    addShell(5, 3);
    turnView(25, 60);
    displayOptions.numbers = displayOptions.hideFacingAway = displayOptions.vertexes = true;
    // What is switched off does not show, whatever there is of it.
    displayOptions.current = displayOptions.settable = false;
    OB->curface = OB->curvertex = 1;
    OB->corners[0].edgeuse = 255;
    box = {{60, 170, 40}, {150, 20, 150}};
    compare("numbers", {2, 0, {Vec3{0.5, 0.5, 0}, Vec3{}}});
}

} // namespace
} // namespace polyfab::test
