// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj/obj_reader.h"

#include "formats/obj/obj_lines.h"
#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

class ObjReader : public test::MeshTest {
  protected:
    int read(const std::string& text, bool append = false) {
        if (!append) test::emptyMesh();
        // A file that is new need not wait for the disk when it is closed, as a rewritten one may.
        std::filesystem::remove(path);
        folder.write("mesh.obj", text);
        const int result = readObjFile(*OB, path, append);
        std::erase_if(shown.log, [](const std::string& line) { return line.starts_with("busy|"); });
        return result;
    }

    /// The number of points; of each face the group and the material that are not the defaults and
    /// its corners as "point/texcoord/normal", 1-based, 0 for none; the message.
    std::string told() {
        std::string text = std::to_string(OB->np);
        const auto number = [](const auto* element, const auto* first) {
            return std::to_string(element != nullptr ? element - first + 1 : 0);
        };
        for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
            for (const std::string name : {OB->groups[face->g].name, OB->materials[face->mat].name})
                text += name != "default" ? "|" + name : "";
            for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
                text += " " + number(c->p, OB->points) + "/" + number(c->t, OB->texcoords) + "/"
                        + number(c->d, OB->normals);
            }
        }
        for (const std::string& line : std::exchange(shown.log, {})) text += " " + line;
        return text;
    }

    const test::TempFolder folder;
    const std::string path = folder.path("mesh.obj");
};

const std::string points4 = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n";
const std::string elements = points4 + "vt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nvn 0 1 0\nvn 1 0 0\n";

/// Everything in capitals, which is the same to the full rules, and none to the fast parsers.
std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

TEST_F(ObjReader, Lines) {
    const std::string long70(70, 'n'), note = "# " + std::string(1021, 'x');
    const auto bad = [](const std::string& why) { return " message!|line 11 is bad: " + why; };
    const auto spaces = [](std::size_t count) { return std::string(count, ' '); };
    const std::string vertex = bad("no such vertex|"), normal = bad("no such normal|");
    std::string wide = "f", wideFace;
    for (int i = 0; i < 40; ++i) {
        wide += " 2";
        wideFace += " 2/0/0";
    }
    const struct {
        std::string text, result; ///< behind the elements, and before one more point
    } rows[] = {
        {"f 1/2/3 2 3", "5 1/2/3 2/0/0 3/0/0"},
        {"f -4/-3/-1 +2/+1 3/", "5 1/1/3 2/1/0 3/0/0"},
        {"fo 1 2", "5 1/0/0 2/0/0"},
        {wide, "5" + wideFace},
        {"f 1/9/1 2/-4 3/-5", "5 1/1/1 2/0/0 3/1/0"},
        {"f 1/x/2 2/1x/3 3x/2", "5 1/0/2 2/1/3 3/2/0"},
        {"f 1/2/3/1 2/2//1 3", "5 1/2/3 2/2/0 3/0/0"},
        {"f 1//-4 2//-3 3", "5 1/0/0 2/0/1 3/0/0"},
        {"f\t1\v2 \t 3\x01 ", "5 1/0/0 2/0/0 3/0/0"},
        {"f 1 5 2", "4 1/0/0 0/0/0 0/0/0" + vertex + "f 1 5 2"},
        {"f 1 0 2", "4 1/0/0 0/0/0 0/0/0" + vertex + "f 1 0 2"},
        {"f -5 1", "4 0/0/0 0/0/0" + vertex + "f -5 1"},
        {"f 1 a b", "4 1/0/0 0/0/0 0/0/0" + vertex + "f 1 a b"},
        {"f 1//4 2 3", "4 0/0/0 0/0/0 0/0/0" + normal + "f 1//4 2 3"},
        {"f 1 2//-5", "4 1/0/0 0/0/0" + normal + "f 1 2//-5"},
        {"v 1 2", "4" + bad("<3 args|v 1 2")},
        {"vn 12 3", "4" + bad("<3 args|vn 12 3")},
        // Only lines with a word count, and blanks are shown as spaces.
        {"\n \t\n\r\n  vt\t7\x02 ", "4" + bad("<2 args|  vt 7  ")},
        {"v 1 2 3\r\nv 1 2 3\rv 1 2 3\n\n\rv 1 2 3\r", "9"},
        {std::string("v\0001\0002\0003", 7), "6"},
        {"v\nvt\nf\n   \nvv 1 2 3\nv: 1 2 3\nl 1 2\n# v 1 2 3\nv  \t", "5"},
        // A line of 1023 characters ends there; what follows is a line of its own.
        {"v 1 2" + spaces(1016) + " 3", "6"},
        {"v 1 2 3" + spaces(1016) + "v 1 2 3", "7"},
        {"f 1 2" + spaces(1018) + "3", "5 1/0/0 2/0/0"},
        {note + "v 1 2 3", "6"},
        {note + spaces(1000) + "v 1 2 3", "6"},
        {"v 1 2 0" + std::string(1016, '0') + "v 1 2 3", "7"},
        {"g body:left\nf 1", "5|body 1/0/0"},
        {"g  two\twords \t\nf 1", "5|two words 1/0/0"},
        {"g :x\nf 1", "5| 1/0/0"},
        {"g " + long70 + "\nf 1", "5|" + long70.substr(0, 63) + " 1/0/0"},
        {"usemtl a:b c \nf 1", "5|a:b c 1/0/0"},
        // Numbers count from what is there.
        {"geomCustom 1\nv 5 5 5\nf 1 -5 0/0/0", "6 5/3/3 1/3/3 4/3/3"},
        {"actor one:1\nv 5 5 5\nf 1", "6|one 5/3/3"},
        {"prop two x:1\nv 5 5 5\nf 1", "6|prop___two x 5/3/3"},
    };
    for (const auto& row : rows) {
        const std::string text = elements + row.text + "\nv 0 0 0\n";
        const bool sound = row.result.find('!') == std::string::npos;
        EXPECT_EQ(read(text), sound);
        EXPECT_EQ(told(), row.result) << row.text;
        EXPECT_TRUE(check(*OB) == nullptr || !sound) << row.text;
        EXPECT_EQ(read(capitals(text)), sound);
        EXPECT_EQ(capitals(told()), capitals(row.result)) << row.text;
    }
    EXPECT_EQ(read(points4 + "f 1/7 2/-2 3\nv 1 2 3"), 1); // no texture coordinate and no end
    EXPECT_EQ(told(), "4 1/0/0 2/0/0 3/0/0");
}

TEST_F(ObjReader, Numbers) {
    const std::string text =
        "v 1e1x abc -.5 9 9\nvt 200000 0.5 7\nvt -100000 -100000.1\nvn -1 0x7 1e999\n";
    for (const std::string& lines : {text, capitals(text)}) {
        EXPECT_EQ(read(lines), 1);
        const auto& [p, t, d] = std::tuple(OB->points[0], OB->texcoords, OB->normals[0]);
        EXPECT_EQ(std::tuple(p.x, p.y, p.z), std::tuple(10, 0, -0.5));
        EXPECT_EQ(std::tuple(t[0].u, t[0].v, t[1].u, t[1].v), std::tuple(0, 0.5, -100000, 0));
        EXPECT_EQ(std::tuple(d.x, d.y, d.z), std::tuple(-1, 0, HUGE_VAL));
    }
}

TEST_F(ObjReader, AppendingGoesOnFromWhatIsThere) {
    const std::string longName = "\ng " + std::string(70, 'n');
    std::string names;
    for (int i = 0; i < 5000; ++i) names += "g A\nusemtl m\n";
    EXPECT_EQ(read(elements + "f 1 2 3\ng default" + longName + longName + "x\ng a\t\ng a:b\n"
                   + names + "mtllib\nmtllib a\tb.mtl \n"),
              1);
    OB->highlightPoint(2);
    EXPECT_EQ(read("v 5 5 5\nvt 1 1\nusemtl m \ng a\nmtllib c.mtl\nf 1/1 -1/-1 1//0\nv 1", true),
              1);
    EXPECT_EQ(told(), "5 1/0/0 2/0/0 3/0/0|a|m 5/4/3 5/4/3 5/3/3");
    EXPECT_EQ(std::tuple(OB->ng, OB->nmat), std::tuple(4, 2)); // default, n..., a, A
    EXPECT_EQ(OB->materials[1].color, defaultColor);
    EXPECT_STREQ(OB->mtllib, "a b.mtl ");
    EXPECT_EQ(std::tuple(OB->points[2].highlighted, OB->changed), std::tuple(0, 1));
    EXPECT_EQ(read(names + "v 1\n", true), 0);
    EXPECT_EQ(std::tuple(OB->ngmax, OB->nmatmax), std::tuple(4096, 4096)); // trimmed all the same
    EXPECT_EQ(read("MTLLIB " + std::string(2000, 'l') + "\n"), 1);
    EXPECT_EQ(OB->mtllib, std::string(1016, 'l'));
}

TEST_F(ObjReader, FilesThatCannotBeOpenedOrRead) {
    // The last of them opens, but its first page is nowhere to be read.
    for (const std::string& file : {folder.path(""), std::string("/proc/self/mem")}) {
        shown.log.clear();
        EXPECT_EQ(readObjFile(*OB, file, true), 0);
        const std::string verb = file[1] == 'p' ? "read" : "open";
        const std::string message = "message!|I can't " + verb + " this file|" + file;
        EXPECT_EQ(shown.log, (Log{"busy|I am counting the vertexes etc in the file", message,
                                  "busy|", message}));
    }
}

TEST_F(ObjReader, PiecesOfAFileJoin) {
    // Lines of all lengths come to lie across the ends of the pieces that the file is read in.
    std::string text(3'000'000, '#');
    const int count = 60'000;
    for (int i = 0; i < count; ++i) {
        if (i % 100 == 0) text += "\n" + std::string(static_cast<std::size_t>(i % 1500), ' ');
        const std::string number = std::to_string(i);
        text += "\nv " + number + " 0 " + std::string(i % 90, '0') + number + ".5\nf "
                + std::to_string(i + 1) + std::string(i % 90, ' ') + " -1 1";
    }
    ASSERT_EQ(read(text + "\n"), 1);
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(OB->points[i].z, i + 0.5);
        ASSERT_EQ(OB->faces[i].q[0].p, &OB->points[i]);
    }
    ObjCounts counts;
    EXPECT_EQ(countObjFile(path, counts), 1);
    EXPECT_EQ(std::tuple(counts.points, counts.faces, counts.corners),
              std::tuple(OB->np, OB->nf, OB->nf + OB->nq));
    EXPECT_EQ(std::tuple(OB->np, OB->nf), std::tuple(count, count));
}

} // namespace
} // namespace polyfab
