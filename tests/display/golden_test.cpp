// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of whole scenes against those in tests/golden. scripts/golden.sh makes them anew; look
// at each before it is kept.
#include "display/look.h"
#include "mesh/edges.h"
#include "platform/batch/write_png.h"
#include "tests/display/pane_fixture.h"
#include "tests/support/read_png.h"

#include <array>
#include <cstdlib>
#include <string>

namespace polyfab::test {
namespace {

/// Draws text in a face of its own, so that pictures do not depend on the fonts of a machine.
class PlainText : public FakePlatform {
  public:
    void drawText(Bitmap& drawn, int x, int y, const std::string& words, const Font& font,
                  std::uint32_t color) override {
        for (const char letter : words) {
            drawLetter(drawn, x, y + (font.height - 5) / 2, letter, color);
            x += width;
        }
    }
    int textWidth(const std::string& words, const Font&) override {
        return static_cast<int>(words.size()) * width;
    }

  private:
    static constexpr int width = 4;

    /// Five rows of three pixels, the upper left one in the highest bit. What is no digit, x, y or
    /// z is a full block.
    static void drawLetter(Bitmap& drawn, int x, int y, char letter, std::uint32_t color) {
        constexpr std::array<unsigned, 13> shapes = {
            0b111101101101111, 0b010110010010111, 0b111001111100111, 0b111001111001111,
            0b101101111001001, 0b111100111001111, 0b111100111101111, 0b111001001010010,
            0b111101111101111, 0b111101111001111, 0b000101010101000, 0b000101101011110,
            0b000111010100111};
        constexpr std::string_view letters = "0123456789xyz";
        const auto index = letters.find(letter);
        const unsigned shape = index == letters.npos ? 0x7FFF : shapes[index];
        for (int i = 0; i < 15; ++i) {
            if ((shape >> (14 - i) & 1) == 0) continue;
            const auto place = static_cast<std::size_t>((y + i / 3) * drawn.width + x + i % 3);
            drawn.pixels.at(place) = color;
        }
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

    void compare(const std::string& name, const Markers& markers = {}) {
        const Bitmap& picture = redraw(markers);
        const std::string path = POLYFAB_GOLDEN "/" + name + ".png";
        if (std::getenv("POLYFAB_REFRESH_GOLDEN") != nullptr) {
            ASSERT_EQ(writePng(picture, path), "");
            return;
        }
        const Bitmap golden = readPng(path);
        ASSERT_EQ(golden.pixels.size(), picture.pixels.size()) << path;
        // Rounding may differ from machine to machine: a few pixels move.
        const auto apart = [](std::uint32_t a, std::uint32_t b) {
            int most = 0;
            for (const int shift : {0, 8, 16}) {
                most = std::max(most, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
            }
            return most > 24;
        };
        std::size_t differing = 0;
        for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
            differing += apart(picture.pixels[i], golden.pixels[i]);
        }
        if (differing * 1000 <= picture.pixels.size()) return;
        const std::string seen = testing::TempDir() + name + ".png";
        EXPECT_EQ(writePng(picture, seen), "");
        ADD_FAILURE() << differing << " pixels differ: compare " << seen << " with " << path;
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
    compare("everything", {5, 1, {Vec3{1.2, 0.3, 0}, Vec3{-1.2, -0.3, 0}}});
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
    view.scale *= 12;
    applyView();
    const Vec3 at = projection.toScreen({corner.x, corner.y, corner.z});
    view.offset = {view.offset.x + 100 - at.x, view.offset.y + 100 - at.y,
                   view.offset.z + 100 - at.z};
    applyView();
    OB->curface = 6;
    displayOptions.looseEdges = displayOptions.axes = displayOptions.grid = true;
    compare("far_inside", {6, 2, {}});
}

TEST_F(Golden, Numbers) {
    addShell(5, 3);
    turnView(25, 60);
    displayOptions.numbers = displayOptions.hideFacingAway = displayOptions.vertexes = true;
    compare("numbers");
}

} // namespace
} // namespace polyfab::test
