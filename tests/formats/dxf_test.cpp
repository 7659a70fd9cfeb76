// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/dxf/dxf_reader.h"
#include "formats/dxf/dxf_writer.h"
#include "mesh/check.h"
#include "tests/support/file_texts.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <algorithm>

namespace polyfab::test {
namespace {

using namespace std::string_literals;

class DxfTest : public MeshTest {
  protected:
    /// A new file each time: some file systems write out what takes a file's place.
    std::string fresh(const std::string& text) {
        return folder.write(std::to_string(++files) + ".dxf", text);
    }

    TempFolder folder;
    int files = 0;
};

TEST_F(DxfTest, Reading) {
    const std::string face = "0\n3DFACE\n", quad = dxfFace("Wall", "ABCD");
    const struct {
        std::string text, result; ///< boundaries, points, each face's material and corners
    } rows[] = {
        {dxfHead + quad + dxfFace("Wall", "BAEF") + dxfTail, "3 6 Wall:ABCD Wall:BAEF"},
        {"0\nSECTION\n2\nHEADER\n0\nENDSEC\n" + dxfHead + quad + dxfTail, "1 0"},
        {dxfFace("2", "ABCD") + dxfFace("", "ABCE") + dxfTail,
         "3 5 material2:ABCD defaultmat:ABCE"},
        {dxfFace("w", "AABC") + dxfFace("v", "AABB") + dxfTail, "3 3 w:ABC"},
        {dxfFace("0", "ABCD") + "8\nWall\n" + dxfFace("0", "ABCE") + dxfTail,
         "3 5 Wall:ABCD material0:ABCE"}, // behind the corners, too
        {quad + "0\r\nEOF\r", "2 4 Wall:ABCD"},
        {quad + "0\nEOFS\n0\nENDSECT\n0\n 3DFACE\n0\n3DFACES\n" + dxfTail, "3 4 Wall:ABCD"},
        {dxfFace("a\rb", "ABCD") + dxfTail, "2 4 a\rb:ABCD"},
        // Coordinates begin at 0 again, the layer only behind a face.
        {quad + face + " 11 \n 1\n+22\n4.0e0\n013\n3\n023\n9\n9\n7\n" + dxfTail,
         "3 6 Wall:ABCD defaultmat:ABAD"},
        {face + "8\nx\n" + face + "11\n1\n12\n2\n23\n5\n" + dxfTail, "3 4 x:ABCA"},
        // A line of 255 characters ends there.
        {face + std::string(254, '1') + "\n7\n8\nx\n" + quad.substr(16) + dxfTail, "2 4 x:ABCD"},
        {face + std::string(255, '1') + "7\n8\nx\n" + quad.substr(16) + dxfTail, "2 4 x:ABCD"}};
    for (const auto& row : rows) {
        std::string withReturns;
        for (const char c : row.text) withReturns += c == '\n' ? "\r\n" : std::string(1, c);
        for (const std::string& text : {row.text, withReturns}) {
            emptyMesh();
            std::string told = std::to_string(readDxfFile(*OB, fresh(text), false));
            told += " " + std::to_string(OB->np);
            for (const Face* f = OB->faces; f != OB->faces + OB->nf; ++f) {
                told += " "s + OB->materials[f->mat].name + ":";
                for (int k = 0; k < f->n; ++k) told += static_cast<char>('A' + f->q[k].p->x);
            }
            EXPECT_EQ(told, row.result) << text;
            EXPECT_EQ(check(*OB), nullptr) << text;
        }
    }
}

TEST_F(DxfTest, LargeFiles) {
    std::string text = "\n";
    int count = 0;
    for (; text.size() < (1 << 20) + 100; ++count) text += dxfFace(std::string(70, 'n'), "ABCD");
    shown.windowTitle = std::string(127, 'x') + "\xC3\x84tail";
    const std::string title = shown.windowTitle.substr(0, 129);
    OB->addPoint(0, 0, 0, false);
    OB->highlightPoint(0);
    for (int shift = 1; shift < 30; ++shift) { // lines across the pieces of the file
        ASSERT_EQ(readDxfFile(*OB, fresh("999\n" + text + dxfTail), true), count + 1);
        ASSERT_EQ(std::tuple(OB->np, OB->nf, OB->nmat), std::tuple(4, shift * count, 1));
        text.insert(0, "x");
    }
    EXPECT_EQ(OB->points[0].highlighted, 0);
    EXPECT_EQ(OB->materials[0].name, std::string(63, 'n'));
    EXPECT_EQ(std::tie(shown.log[0], shown.log[1]), std::tuple("title|  256", "title|  512"));
    EXPECT_EQ(shown.windowTitle, title);
}

TEST_F(DxfTest, FilesThatFail) {
    addCube();
    const std::string bad = fresh("0\nSECTION\n3DFACE\n0\n");
    const std::string missing = folder.path("missing/mesh.dxf");
    EXPECT_EQ(readDxfFile(*OB, bad, true) + readDxfFile(*OB, missing, true), 0);
    EXPECT_EQ(OB->nf, 6);
    workbench.wholeMeshWritten = true;
    EXPECT_EQ(writeDxfFile(*OB, missing), 0);
    EXPECT_TRUE(workbench.wholeMeshWritten);
    EXPECT_EQ(writeDxfFile(*OB, "/dev/full"), 0);
    EXPECT_FALSE(workbench.wholeMeshWritten);
    // Of a file that can't be written the command tells.
    EXPECT_EQ(shown.log,
              (Log{"message!|bad DXF file|" + bad, "message!|I can't open this file|" + missing}));
}

} // namespace
} // namespace polyfab::test
