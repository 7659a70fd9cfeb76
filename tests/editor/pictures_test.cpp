// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures that faces show, and the texture maps.
#include "display/face_pictures.h"
#include "display/options.h"
#include "display/texture_slots.h"
#include "editor/history/undo.h"
#include "editor/report.h"
#include "formats/mesh_files.h"
#include "picture/read_image.h"
#include "picture/write_png.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"

#include <cmath>
#include <cstring>

namespace polyfab::test {
namespace {

class Pictures : public WindowEvents {
  protected:
    Pictures() {
        EXPECT_EQ(writePngFile({1, 1, {0xFF000001}}, folder.path("one.png")), "");
        EXPECT_EQ(writePngFile({2, 1, {0xFF000002, 0}}, folder.path("two.png")), "");
        folder.write("bad.png", "\x89PNG\r\n\x1a\n");
        folder.write("m.mtl", "newmtl red\nmap_Kd one.png\nnewmtl bad\nmap_Kd bad.png");
        mesh = folder.write("m.obj", std::string("mtllib m.mtl\nusemtl red\n") + triangle
                                         + "g other\nusemtl bad\nf 1 2 3\n");
    }

    /// The first pixel of what each face shows; 0: none.
    static std::vector<std::uint32_t> seen() {
        FacePictures pictures(*OB);
        std::vector<std::uint32_t> pixels;
        for (int i = 0; i < OB->nf; ++i) {
            const Image* const image = pictures.of(OB->faces[i]).image;
            pixels.push_back(image != nullptr ? image->pixels[0] : 0);
        }
        return pixels;
    }

    /// What the command with this answer for its dialog shows.
    std::vector<std::string> run(int id, const std::string& file) {
        shown.log.clear();
        shown.files = {folder.path(file)};
        command(id);
        return std::exchange(shown.log, {});
    }

    using Seen = std::vector<std::uint32_t>;
    TempFolder folder;
    std::string mesh;
};

TEST_F(Pictures, AFaceShowsItsMaterialsElseItsGroupsAndUndoBringsBothBack) {
    handleEvent({.kind = EventKind::drop, .paths = {mesh}});
    EXPECT_EQ(seen(), (Seen{0xFF000001, 0}));
    send(EventKind::paint);
    EXPECT_NE(shown.status.left.find("I can't read the picture"), std::string::npos);
    EXPECT_EQ(std::count_if(shown.log.begin(), shown.log.end(),
                            [](const std::string& line) {
                                return line.starts_with("note|I can't read the picture of the ma");
                            }),
              1);
    command(338);
    EXPECT_EQ(run(383, "two.png")[1], "note|texture map 2 is 2 x 1");
    EXPECT_EQ(seen(), (Seen{0xFF000001, 0}));
    OB->groups[OB->faces[1].g].texture = 2;
    EXPECT_EQ(seen(), (Seen{0xFF000001, 0xFF000002}));

    keepLook("red", "crimson");
    std::strcpy(OB->materials[0].name, "crimson");
    EXPECT_EQ(seen()[0], 0xFF000001);
    handleEvent({.kind = EventKind::drop, .paths = {folder.write("plain.obj", triangle)}});
    EXPECT_EQ(materialLooks(), nullptr);
    command(undoCommand);
    EXPECT_EQ(seen()[0], 0xFF000001);
    command(redoCommand);
    EXPECT_EQ(seen(), Seen{0});
}

TEST_F(Pictures, ALibraryStretchesAndMovesAPicture) {
    const struct {
        const char* options;
        double uScale, vScale, uOffset, vOffset;
    } rows[] = {{"", 1, 1, 0, 0},
                {"-s 2 3 1 -o 0.3 0.7", 2, 3, 0.3, 0.7},
                {"-o 0.25 -s 0.5", 0.5, 1, 0.25, 0},
                {"-o -0.1 0.2 0 -s -1 1.5", -1, 1.5, -0.1, 0.2}};
    std::string bytes = "P6 8 4 255 ";
    for (int i = 0; i < 8 * 4; ++i) bytes += {char(i), char(2 * i), char(3 * i)};
    folder.write("t.ppm", bytes);
    displayOptions = {.renderLeft = true, .lightFromRight = 0, .lightFromAbove = 0};
    for (const auto& row : rows) {
        folder.write("t.mtl", "newmtl a\nmap_Kd " + std::string(row.options) + " t.ppm\n");
        const std::string quad =
            "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\n"
            "vt 1 1\nvt 0 1\nusemtl a\nf 1/1 2/2 3/3 4/4\n";
        handleEvent({.kind = EventKind::drop, .paths = {folder.write("t.obj", quad)}});
        send(EventKind::paint);
        const Point &low = OB->points[0], &high = OB->points[2];
        int looked = 0;
        for (int y = int(high.sy) + 9; y < low.sy - 9; ++y) {
            for (int x = int(low.sx) + 9; x < high.sx - 9; ++x) {
                const double u = (x - low.sx) / (high.sx - low.sx) * row.uScale + row.uOffset,
                             v = (y - low.sy) / (high.sy - low.sy) * row.vScale + row.vOffset;
                const double across = (u - std::floor(u)) * 8,
                             down = (1 - v - std::floor(1 - v)) * 4;
                const auto isOnEdge = [](double a) { return std::abs(a - std::round(a)) < 1e-6; };
                if (isOnEdge(across) || isOnEdge(down)) continue;
                const auto texel = std::uint32_t(int(down) * 8 + int(across));
                ASSERT_EQ(shown.picture.pixels[std::size_t(y * shown.picture.width + x)] & 0xFFFFFF,
                          texel * 0x010203)
                    << row.options << ' ' << x << ' ' << y;
                ++looked;
            }
        }
        EXPECT_GT(looked, 500) << row.options;
    }
    displayOptions = {};
}

TEST_F(Pictures, ATextureMapIsReadWrittenAndKeptWhenAFileIsBad) {
    EXPECT_EQ(run(384, "x.png"),
              std::vector<std::string>{"note|there is no picture in texture map 0"});
    ASSERT_EQ(run(383, "two.png").size(), 2U);
    const std::string title = "message!|I can't read this picture: ";
    EXPECT_EQ(run(383, "bad.png")[1], title + "the file ends too early|" + folder.path("bad.png"));
    EXPECT_EQ(run(384, "copy.png")[0], "file|file to write texture map 0 to?|two.png");
    Image copy;
    EXPECT_EQ(readImage(folder.path("copy.png"), copy), "");
    EXPECT_EQ(copy.pixels, textureSlots()[0].image->pixels);
    EXPECT_NE(stateJson().find(R"("width":2,"height":1},null)"), std::string::npos);
    send(EventKind::menuOpening);
    EXPECT_EQ(findItem(shown.bar, 336)->label, "select texture map &0 (two.png)");
    EXPECT_TRUE(findItem(shown.bar, 336)->checked);
}

TEST_F(Pictures, TheTextureMapIsDrawn) {
    addFace(
        {OB->addPoint(0, 0, 0, false), OB->addPoint(1, 0, 0, false), OB->addPoint(0, 1, 0, false)});
    constexpr double uv[3][2] = {{0.25, 0.25}, {0.75, 0.25}, {0.25, 1.75}};
    ASSERT_EQ(OB->growTexCoords(3, true), 1);
    for (int i = 0; i < 3; ++i) {
        OB->faces[0].q[i].t = OB->texcoords + OB->addTexCoord(uv[i][0], uv[i][1]);
    }
    OB->materials[0].color = 0x123456;
    shown.dialogAnswers = {{"16"}};
    EXPECT_EQ(run(265, "uv.png").back(),
              "note|I have drawn 1 face; 1 reach beyond 0 to 1 and are cut off");
    Image drawn;
    ASSERT_EQ(readImage(folder.path("uv.png"), drawn), "");
    const auto at = [&](int x, int y) {
        return drawn.pixels[static_cast<std::size_t>(16 * y + x)];
    };
    EXPECT_EQ(drawn.width, 16);
    EXPECT_EQ((Seen{at(4, 12), at(12, 12), at(4, 0), at(6, 8), at(3, 8), at(13, 8), at(8, 13)}),
              (Seen{0xFF000000, 0xFF000000, 0xFF000000, 0x40123456, 0, 0, 0}));
}

} // namespace
} // namespace polyfab::test
