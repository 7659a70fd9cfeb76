// SPDX-License-Identifier: GPL-3.0-or-later
// What the writers make of a mesh with everything in it, of parts of it, and of an unsound one: the
// files stand in tests/golden/written.txt.
#include "formats/3ds/3ds_writer.h"
#include "formats/dxf/dxf_writer.h"
#include "formats/obj/obj_writer.h"
#include "tests/support/golden_text.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <cstring>
#include <set>
#include <sstream>

namespace polyfab::test {
namespace {

using Written = MeshTest;

/// Faces of 0 to 7 corners in groups and materials out of order; some corners with texture
/// coordinate or normal.
void addEverything() {
    addCube();
    for (const char* const name : {"a b", "empty", "c"}) OB->addGroup(name);
    for (const char* const name : {"wood", "a\r\nb"}) OB->addMaterial(0xFF102030, name);
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
    {"some not selected",
     [] {
         for (const int face : {0, 3, 5, 6}) OB->faces[face].selected = 0;
     }},
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
    {"no face",
     [] {
         OB->nf = 0;
         OB->mtllib[0] = 0;
     }},
};

/// The text in lines, an entity of DXF in one; a dot shows where it ends.
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

/// The chunks of a 3DS file, each with its id and what it holds.
std::string chunksOf(std::string_view bytes, const std::string& indent = "\n    ") {
    static const std::set named{0xA000, 0x4000, 0x4130},
        nested{0x4D4D, 0x3D3D, 0xAFFF, 0xA020, 0x4000, 0x4100};
    constexpr int points = 0x4110;
    const auto take = [](auto value, std::string_view& from) {
        std::memcpy(&value, from.data(), sizeof value);
        from.remove_prefix(sizeof value);
        return value;
    };
    std::ostringstream text;
    while (!bytes.empty()) {
        const int id = take(std::uint16_t{}, bytes);
        const std::size_t size = take(std::uint32_t{}, bytes) - 6;
        std::string_view inside = bytes.substr(0, size);
        bytes.remove_prefix(inside.size());
        text << indent << std::hex << id << std::dec;
        for (char c = named.contains(id) ? ' ' : '\0'; c != 0; c = take(char{}, inside)) {
            text << (c < ' ' ? '^' : c);
        }
        if (nested.contains(id)) text << chunksOf(std::exchange(inside, {}), indent + "  ");
        if (id == points) text << ' ' << take(std::uint16_t{}, inside);
        while (!inside.empty()) {
            text << ' ';
            if (id == points) {
                text << take(float{}, inside);
            } else if (id == 0x11 || id == 0x12) {
                text << unsigned{take(std::uint8_t{}, inside)};
            } else {
                text << take(std::uint16_t{}, inside);
            }
        }
    }
    return text.str();
}

TEST_F(Written, FilesAreAsTheyWere) {
    const struct {
        std::string name;
        int (*write)(const std::string&);
        bool always = true; ///< or of the first mesh only
    } writers[] = {
        {"obj", [](const std::string& path) { return writeObjFile(*OB, path, objPlain); }},
        {"dxf", [](const std::string& path) { return writeDxfFile(*OB, path); }},
        {"3ds", [](const std::string& path) { return write3dsFile(*OB, path); }},
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
                const bool done = write(folder.write("written", "")) == 1;
                if (!always && mesh != meshes[0].name) continue;
                std::erase_if(shown.log,
                              [](const auto& line) { return line[0] == 't' || line[0] == 'n'; });
                if (part && shown.log.empty()) continue; // asks nothing
                text += "== " + format + ", " + mesh + (part ? ", only the selected" : "")
                        + (done && workbench.wholeMeshWritten ? "\n" : ": not whole\n");
                for (const std::string& line : shown.log) {
                    text += "  " + line.substr(0, line.find(folder.path(""))) + "\n";
                }
                const std::string file = folder.read("written");
                text += format == "3ds" ? chunksOf(file).erase(0, 1) + '\n'
                                        : linesOf(file, format == "dxf");
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
