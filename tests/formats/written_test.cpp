// SPDX-License-Identifier: GPL-3.0-or-later
// What the writers of text make of a mesh with everything in it, of parts of it, and of an unsound
// one: the files stand in tests/golden/written.txt.
#include "formats/dxf_writer.h"
#include "formats/obj_writer.h"
#include "tests/support/golden_text.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <cstring>

namespace polyfab::test {
namespace {

using Written = MeshTest;

/// Faces of 0 to 7 corners in groups and materials out of order; some corners with texture
/// coordinate or normal.
void addEverything() {
    addCube();
    for (const char* const name : {"a b", "empty", "c"}) OB->addGroup(name);
    for (const char* const name : {"wood", "a\r\nb"}) OB->addMaterial(defaultColor, name);
    OB->points[6].x = 0.1234567;
    for (const Numbers& points :
         {Numbers{0, 1, 3, 7, 6, 4, 5}, {0, 1}, {}, {0, 3, 5, 6, 1}, {2, 4, 7}}) {
        addFace(points);
    }
    OB->addTexCoord(0.5, 1234567), OB->addTexCoord(0, -0.125);
    OB->addNormal(0, 0, -1), OB->addNormal(1e-7, 1 / 3.0, 1), OB->addNormal(0, 0, 1);
    FaceCorner* const first = OB->faces[0].q;
    first[0].d = OB->normals + 1;
    first[1].t = OB->texcoords + 1;
    first[2].d = OB->normals + 2;
    first[2].t = OB->texcoords;
    for (const int face : {0, 1, 9}) OB->faces[face].g = 1;
    for (const int face : {5, 6}) OB->faces[face].g = 3;
    for (const int face : {0, 2, 5}) OB->faces[face].mat = 1;
    for (const int face : {6, 10}) OB->faces[face].mat = 2;
    std::strcpy(OB->mtllib, "rocks.mtl");
}

constexpr struct {
    const char* name;
    void (*change)();
} meshes[] = {
    {"everything", [] {}},
    {"two not selected", [] { OB->faces[0].selected = OB->faces[3].selected = 0; }},
    {"two deleted",
     [] {
         for (const int face : {0, 3}) OB->faces[face].q = nullptr, OB->faces[face].selected = 0;
     }},
    {"unsound",
     [] {
         OB->faces[0].g = 9;
         OB->faces[1].g = -1;
         OB->faces[2].mat = 9;
         OB->faces[3].mat = -1;
         OB->faces[4].q[3].p = nullptr;
     }},
    {"no face", [] { OB->nf = OB->mtllib[0] = 0; }},
};

/// The file in lines, an entity of DXF in one; a dot shows where it ends.
std::string linesOf(const std::string& file, bool isDxf) {
    std::string lines = "    ", text = file + ".\n";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool ends = text[i] == '\n' && (!isDxf || text.compare(i, 3, "\n0\n") == 0);
        lines += ends ? "\n    "
                      : std::string(1, text[i] == '\n'   ? '|'
                                       : text[i] == '\r' ? '^'
                                                         : text[i]);
    }
    return lines.substr(0, lines.size() - 4 * !isDxf) + (isDxf ? "\n" : "");
}

TEST_F(Written, FilesAreAsTheyWere) {
    const struct {
        std::string name;
        int (*write)(const std::string&);
        bool always = true; ///< or of the first mesh only
    } writers[] = {
        {"obj", [](const std::string& path) { return writeObjFile(*OB, path, objPlain); }},
        {"dxf", [](const std::string& path) { return writeDxfFile(*OB, path); }},
        {"relative", [](const std::string& path) { return writeObjFile(*OB, path, objRelative); },
         false},
        {"trace", [](const std::string& path) { return writeObjFile(*OB, path, objTrace); },
         false}};
    const TempFolder folder;
    std::string text;
    for (const auto& [mesh, change] : meshes) {
        for (const auto& [format, write, always] : writers) {
            for (const bool part : {false, true}) {
                emptyMesh();
                addEverything();
                change();
                shown.log.clear();
                shown.choices = {part ? Choice::yes : Choice::no};
                EXPECT_EQ(write(folder.path("written")), 1);
                if (!always && mesh != meshes[0].name) continue;
                if (part && shown.log.empty()) continue; // asks nothing
                text += "== " + format + ", " + mesh + (part ? ", only the selected" : "")
                        + (workbench.wholeMeshWritten ? "\n" : ": not whole\n");
                for (const std::string& line : shown.log) text += "  " + line + "\n";
                text += linesOf(folder.read("written"), format == "dxf");
            }
        }
    }
    expectGoldenText("written.txt", text);
}

TEST_F(Written, FilesThatCannotBeCreatedOrWritten) {
    addCube();
    OB->faces[0].selected = 0;
    workbench.wholeMeshWritten = true;
    const std::string path = TempFolder().path("missing/mesh.obj");
    EXPECT_EQ(writeObjFile(*OB, path, 0), 0);
    EXPECT_TRUE(workbench.wholeMeshWritten);
    EXPECT_EQ(writeObjFile(*OB, "/dev/full", 0), 0);
    EXPECT_FALSE(workbench.wholeMeshWritten);
    EXPECT_EQ(shown.log, (Log{"message!|can't open file|" + path,
                              "question||Do you want me to output only the selected parts?",
                              "message!|can't open file|/dev/full"}));
}

} // namespace
} // namespace polyfab::test
