// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj_reader.h"

#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <map>
#include <random>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

class ObjReader : public test::MeshTest {
  protected:
    int read(const std::string& text, bool append = false) {
        if (!append) test::emptyMesh();
        shown.log.clear();
        // A file that is new need not wait for the disk when it is closed, as a rewritten one may.
        std::filesystem::remove(path);
        folder.write("mesh.obj", text);
        const int result = readObjFile(path, append);
        std::erase_if(shown.log, [](const std::string& line) { return line.starts_with("busy|"); });
        return result;
    }

    const test::TempFolder folder;
    const std::string path = folder.path("mesh.obj");
    std::mt19937 random{static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed())};
};

/// The corners as "point/texcoord/normal", 1-based, 0 for none.
std::string corners(const Face& face) {
    std::string text;
    for (const FaceCorner* c = face.q; c != face.q + face.n; ++c) {
        text += c == face.q ? "" : " ";
        text += std::to_string(c->p ? indexIn(OB->points, c->p) + 1 : 0) + "/"
                + std::to_string(c->t ? indexIn(OB->texcoords, c->t) + 1 : 0) + "/"
                + std::to_string(c->d ? indexIn(OB->normals, c->d) + 1 : 0);
    }
    return text;
}

std::string lastFace() { return OB->nf > 0 ? corners(OB->faces[OB->nf - 1]) : ""; }

const std::string points4 = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n";
const std::string elements = points4 + "vt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nvn 0 1 0\nvn 1 0 0\n";

TEST_F(ObjReader, LinesBehindElements) {
    const char* const vertex = "no such vertex";
    const char* const normal = "no such normal";
    const struct {
        std::string line;
        const char* face;
        const char* bad = nullptr;
    } rows[] = {{"f 1/2/3 2 3", "1/2/3 2/0/0 3/0/0"},
                {"f 1//3 2//3 3//3", "1/0/3 2/0/3 3/0/3"},
                {"f -4/-3/-1 +2/+1 3/", "1/1/3 2/1/0 3/0/0"},
                {"fo 1 2 3 4", "1/0/0 2/0/0 3/0/0 4/0/0"},
                {"f 1/9/1 2/-4 3/-5", "1/1/1 2/0/0 3/1/0"},
                {"f 1/99999999999999999999 2 3", "1/1/0 2/0/0 3/0/0"},
                {"f 1/x/2 2/1x/3 3x/2", "1/0/2 2/1/3 3/2/0"},
                {"f 1/2/3/1 2/2//1 3", "1/2/3 2/2/0 3/0/0"},
                {"f 1//-4 2//-3 3", "1/0/0 2/0/1 3/0/0"},
                {"f\t1\v2 \t 3\x01 ", "1/0/0 2/0/0 3/0/0"},
                {"f 2", "2/0/0"},
                {"f 1 5 2", "1/0/0 0/0/0 0/0/0", vertex},
                {"f 1 0 2", "1/0/0 0/0/0 0/0/0", vertex},
                {"f -5 1", "0/0/0 0/0/0", vertex},
                {"f 1 a b", "1/0/0 0/0/0 0/0/0", vertex},
                {"f 18446744073709551617", "0/0/0", vertex},
                {"f 1//4 2 3", "0/0/0 0/0/0 0/0/0", normal},
                {"f 1 2//-5", "1/0/0 0/0/0", normal},
                {"v 1 2", "", "<3 args"},
                {"  vt 7  ", "", "<2 args"},
                {"vn 12 3", "", "<3 args"}};
    for (const auto& row : rows) {
        // Nothing is read behind a bad line.
        EXPECT_EQ(read(elements + row.line + "\nv 1\nv 2\n"), 0) << row.line;
        const std::string bad = row.bad ? "11 is bad: " + std::string(row.bad) + "|" + row.line
                                        : "12 is bad: <3 args|v 1";
        EXPECT_EQ(shown.log, Log{"message!|line " + bad});
        EXPECT_EQ(lastFace(), row.face) << row.line;
        EXPECT_EQ(check(*OB) != nullptr, row.bad && row.line[0] == 'f') << row.line;
    }
    EXPECT_EQ(read(points4 + "f 1/7 2/-2 3\n"), 1); // without any texture coordinate
    EXPECT_EQ(lastFace(), "1/0/0 2/0/0 3/0/0");
    // Only lines with a word count, and blanks are shown as spaces.
    EXPECT_EQ(read("\n \t\nv 0 0 0\n#\n\r\n  vt\t7\x02 \n"), 0);
    EXPECT_EQ(shown.log, Log{"message!|line 3 is bad: <2 args|  vt 7  "});
}

/// Everything that a file puts into the mesh.
std::string dump() {
    std::ostringstream text;
    for (const Point* p = OB->points; p != OB->points + OB->np; ++p) {
        text << "v " << p->x << ' ' << p->y << ' ' << p->z << '\n';
    }
    for (const TexCoord* t = OB->texcoords; t != OB->texcoords + OB->nt; ++t) {
        text << "vt " << t->u << ' ' << t->v << '\n';
    }
    for (const Normal* d = OB->normals; d != OB->normals + OB->nd; ++d) {
        text << "vn " << d->x << ' ' << d->y << ' ' << d->z << '\n';
    }
    for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        text << corners(*face) << ' ' << OB->groups[face->g].name << ' '
             << OB->materials[face->mat].name << ' '
             << std::count_if(face->q, face->q + face->n, [](auto& c) { return c.edgeuse == 2; });
    }
    text << "nq " << OB->nq;
    return text.str();
}

TEST_F(ObjReader, Numbers) {
    EXPECT_EQ(read("v 1e1x abc -.5 9 9\nvt 200000 0.5 7\nvt -100000 -100000.1\nvn inf 0x7 1e999\n"),
              1);
    EXPECT_EQ(dump(), "v 10 0 -0.5\nvt 0 0.5\nvt -100000 0\nvn 0 0 inf\nnq 0");
}

TEST_F(ObjReader, Lines) {
    const std::string note = "# " + std::string(1021, 'x');
    const struct {
        std::string text;
        int points;
    } rows[] = {{"v 1 2 3\nv 1 2 3", 1},
                {"v 1 2 3\r\nv 1 2 3\rv 1 2 3\n\n\rv 1 2 3\r", 4},
                {std::string("v\0001\0002\0003\n", 8), 1},
                {"v\nvt\nf\n   \nvv 1 2 3\nv: 1 2 3\nl 1 2\n# v 1 2 3\nv  \t\n", 0},
                {"\xC3\xA4 1 2 3\nv 1 2 3\xC3\n", 1},
                // A line of 1023 characters ends there; what follows is a line of its own.
                {"v 1 2" + std::string(1016, ' ') + " 3\n", 1},
                {note + "v 1 2 3", 0},
                {note + std::string(1000, ' ') + "v 1 2 3\n", 1},
                {note + note + "\nv 1 2 3\n", 1},
                {"v 1 2 3" + std::string(1016, ' '), 1},
                {"v 1 2 3" + std::string(1015, ' '), 0},
                {"v 1 2 0" + std::string(1016, '0') + "v 1 2 3\n", 2}};
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.text), 1) << row.text;
        EXPECT_EQ(OB->np, row.points) << row.text;
    }
    const std::string digits(1200, '0');
    EXPECT_EQ(read("v 1 2 3\nf " + digits + "1 1\n"), 0);
    EXPECT_EQ(shown.log, Log{"message!|line 2 is bad: no such vertex|f " + digits.substr(0, 1021)});
}

TEST_F(ObjReader, Names) {
    const std::string long70(70, 'n');
    const struct {
        std::string line, group, material = "default";
    } rows[] = {{"", "default"},
                {"g body:left", "body"},
                {"g  two\twords \t", "two words"},
                {"g :x", ""},
                {"g Body", "Body"},
                {"g " + long70, long70.substr(0, 63)},
                {"usemtl a:b c ", "default", "a:b c"},
                {"actor one:1", "one"},
                {"prop two x:1", "prop___two x"}};
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.line + "\n" + points4 + "f -3 -2 -1\n"), 1);
        EXPECT_STREQ(OB->groups[OB->faces[0].g].name, row.group.c_str()) << row.line;
        EXPECT_STREQ(OB->materials[OB->faces[0].mat].name, row.material.c_str()) << row.line;
    }
    EXPECT_EQ(read(points4 + "f 1 2 3\ng default\nusemtl default\nf 1 2 3\ng " + long70 + "\ng "
                   + long70 + "x\ng a\t\ng a:b\ng A\nusemtl m\nmtllib\nmtllib a\tb.mtl \n"),
              1);
    EXPECT_EQ(read("usemtl m \ng a\nmtllib c.mtl\n", true), 1);
    EXPECT_EQ(std::tuple(OB->ng, OB->curgroup), std::tuple(4, 2)); // default, n..., a, A
    EXPECT_EQ(std::tuple(OB->nmat, OB->curmat), std::tuple(2, 1));
    EXPECT_EQ(OB->materials[1].color, defaultColor);
    EXPECT_STREQ(OB->mtllib, "a b.mtl ");
    EXPECT_EQ(read("MTLLIB " + std::string(2000, 'l') + "\n"), 1);
    EXPECT_EQ(OB->mtllib, std::string(1016, 'l'));
}

TEST_F(ObjReader, SectionsAndAppendedFilesCountFromWhatIsThere) {
    EXPECT_EQ(read(elements + "f 1 2 3\n"), 1);
    EXPECT_EQ(read("v 5 5 5\nvt 1 1\nf 1/1 -1/-1 1//0\n", true), 1);
    EXPECT_EQ(lastFace(), "5/4/3 5/4/3 5/3/3");
    for (const char* section : {"actor a", "prop p", "geomCustom 1"}) {
        EXPECT_EQ(read(elements + section + "\nv 5 5 5\nf 1 -5 0/0/0\n"), 1) << section;
        EXPECT_EQ(lastFace(), "5/3/3 1/3/3 4/3/3") << section;
    }
    // Nothing to count from: a word that is no number is not the last element before the section.
    EXPECT_EQ(read(elements + "geomCustom 1\nf x\n"), 0);
}

TEST_F(ObjReader, ArraysAreTrimmedAndMarksCleared) {
    EXPECT_EQ(read(points4), 1);
    OB->highlightPoint(2);
    std::string text = points4 + "f 1 2 3\n";
    for (int i = 0; i < 5000; ++i) text += "g same\nusemtl same\n";
    for (const std::string& more : {std::string(), std::string("v\nv 1\n")}) {
        EXPECT_EQ(read(text + more, true), more.empty());
        EXPECT_EQ(OB->points[2].highlighted, 0);
        EXPECT_EQ(std::tuple(OB->ngmax, OB->nmatmax, OB->ndmax), std::tuple(4096, 4096, 0));
        EXPECT_EQ(OB->changed, 1);
    }
}

TEST_F(ObjReader, FilesThatCannotBeOpenedOrRead) {
    // The last of them opens, but its first page is nowhere to be read.
    for (const std::string& file :
         {folder.path("missing.obj"), folder.path(""), std::string("/proc/self/mem")}) {
        shown.log.clear();
        EXPECT_EQ(readObjFile(file, true), 0);
        const std::string verb = file[1] == 'p' ? "read" : "open";
        const std::string message = "message!|I can't " + verb + " this file|" + file;
        EXPECT_EQ(shown.log, (Log{"busy|I am counting the vertexes etc in the file", message,
                                  "busy|", message}));
    }
}

/// Mostly good lines, in many of which one character is another one; some reach the limits.
std::string randomObj(std::mt19937& random) {
    const std::string lines[] = {"f 1 2 3",
                                 "f 1/2 -1/-2 3/9",
                                 "f 1/2/3 2/3/1 3/1/2 4/1/1",
                                 "f 1//1 2//-2  3//3 ",
                                 "f 1/2/ -4//0 2/",
                                 "v 1 -2.5 3e2 0.5",
                                 "v\t+1 .5 0.333333",
                                 "vt 0.25 -7 1",
                                 "vn 0 0.707107 -1",
                                 "vt 99999.9 1e5",
                                 "geomCustom 1",
                                 "g A:B",
                                 "usemtl M",
                                 "v",
                                 "fo 1 2 3",
                                 "f 4 3 2 1 1 2 3 4"};
    const std::string others = " \t\n\r/-+.:e19x\x02\xFE";
    std::string text = elements;
    for (auto n = random() % 30; n > 0; --n) {
        std::string line = lines[random() % std::size(lines)];
        if (random() % 12 == 0) line[random() % line.size()] = others[random() % others.size()];
        if (random() % 40 == 0) line.append(1000 + random() % 50, " 0"[random() % 2]);
        if (random() % 20 == 0) line.insert(0, 100 + random() % 40, ' ');
        if (random() % 20 == 0) line.append(100 + random() % 40, " 0"[random() % 2]);
        text += line + (random() % 5 != 0 ? "\n" : "\r\n");
    }
    return text;
}

/// Of faces, corners, points, texture coordinates, normals, groups and materials, said plainly.
std::vector<std::int64_t> countPlainly(const std::string& text) {
    std::map<std::string, std::int64_t> counts;
    std::int64_t corners = 0;
    std::string line;
    for (const char c : text) {
        const bool atEnd = c == '\n' || c == '\r';
        if (!atEnd) line += static_cast<unsigned char>(c) <= ' ' ? ' ' : c;
        if (!atEnd && line.size() < maxCountedLine) continue;
        std::istringstream words(line);
        std::string keyword, word;
        words >> keyword;
        int count = 1;
        while (words >> word) ++count;
        line.clear();
        if (count < 2) continue;
        ++counts[keyword];
        if (keyword == "f") corners += count;
    }
    return {counts["f"],  corners,     counts["v"],     counts["vt"],
            counts["vn"], counts["g"], counts["usemtl"]};
}

TEST_F(ObjReader, CountsAsThePlainRulesDo) {
    for (int i = 0; i < 5000; ++i) {
        const std::string text = randomObj(random);
        const std::string padded = text + std::string(128, '\0');
        ObjCounts counts;
        const std::size_t used = countObjLines({padded.data(), text.size()}, counts);
        EXPECT_LE(text.size() - used, maxCountedLine);
        const std::vector<std::int64_t> result = {counts.faces,     counts.corners, counts.points,
                                                  counts.texcoords, counts.normals, counts.groups,
                                                  counts.materials};
        ASSERT_EQ(result, countPlainly(text)) << text;
    }
}

/// Everything in capitals, which is the same to the full rules, and none to the fast parsers.
std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

TEST_F(ObjReader, FastAndFullParsersAgree) {
    int faces = 0;
    for (int i = 0; i < 1500; ++i) {
        const std::string text = randomObj(random);
        std::string results[2];
        for (std::string& result : results) {
            const int status = read(&result == results ? text : capitals(text));
            result = std::to_string(status) + " " + dump();
            for (const std::string& message : shown.log) result += message;
            result = capitals(result);
        }
        faces += OB->nf;
        ASSERT_EQ(results[0], results[1]) << text;
    }
    EXPECT_GT(faces, 3000);
}

TEST_F(ObjReader, PiecesOfAFileJoin) {
    // Lines of all lengths come to lie across the ends of the pieces that the file is read in.
    std::ostringstream text;
    text << std::string(3'000'000, '#');
    const int count = 60'000;
    for (int i = 0; i < count; ++i) {
        if (i % 100 == 0) text << '\n' << std::string(static_cast<std::size_t>(i % 1500), ' ');
        text << "\nv " << i << " 0 " << i << ".5\nf " << i + 1 << " -1 1";
    }
    text << '\n';
    ASSERT_EQ(read(text.str()), 1);
    ASSERT_EQ(std::tuple(OB->np, OB->nf), std::tuple(count, count));
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(OB->points[i].z, i + 0.5);
        ASSERT_EQ(OB->faces[i].q[0].p, &OB->points[i]);
    }
}

} // namespace
} // namespace polyfab
