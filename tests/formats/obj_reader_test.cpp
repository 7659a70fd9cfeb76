// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj_reader.h"

#include "mesh/check.h"
#include "mesh/mesh.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <cctype>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace polyfab {
namespace {

class ObjReader : public test::MeshTest {
  protected:
    /// Reads a file of this text. The groups of a mesh that it replaces are released here.
    int read(const std::string& text, bool append = false) {
        // A file that is new need not wait for the disk when it is closed, as a rewritten one may.
        std::filesystem::remove(path);
        folder.write("mesh.obj", text);
        Group* const before = OB->groups;
        const int result = readObjFile(path, append);
        if (!append) {
            Group* groups = before;
            farfree(&groups);
        }
        return result;
    }

    /// What was shown apart from the busy notice.
    std::vector<std::string> messages() const {
        std::vector<std::string> result;
        for (const std::string& line : shown.log) {
            if (!line.starts_with("busy|")) result.push_back(line);
        }
        return result;
    }

    const test::TempFolder folder;
    const std::string path = folder.path("mesh.obj");
};

/// The corners as "point/texcoord/normal", 1-based, 0 for none.
std::string corners(const Face& face) {
    std::ostringstream text;
    for (int k = 0; k < face.n; ++k) {
        const FaceCorner& corner = face.q[k];
        text << (k > 0 ? " " : "") << (corner.p ? indexIn(OB->points, corner.p) + 1 : 0) << '/'
             << (corner.t ? indexIn(OB->texcoords, corner.t) + 1 : 0) << '/'
             << (corner.d ? indexIn(OB->normals, corner.d) + 1 : 0);
    }
    return text.str();
}

std::string lastFace() { return OB->nf > 0 ? corners(OB->faces[OB->nf - 1]) : "none"; }

/// Everything that a file puts into the mesh.
std::string dump() {
    std::ostringstream text;
    text.precision(17);
    for (int i = 0; i < OB->np; ++i) {
        const Point& p = OB->points[i];
        text << "v " << p.x << ' ' << p.y << ' ' << p.z << '\n';
    }
    for (int i = 0; i < OB->nt; ++i) {
        text << "vt " << OB->texcoords[i].u << ' ' << OB->texcoords[i].v << '\n';
    }
    for (int i = 0; i < OB->nd; ++i) {
        const Normal& d = OB->normals[i];
        text << "vn " << d.x << ' ' << d.y << ' ' << d.z << '\n';
    }
    for (int i = 0; i < OB->nf; ++i) {
        const Face& face = OB->faces[i];
        text << "f " << corners(face) << " group " << OB->groups[face.g].name << " material "
             << OB->materials[face.mat].name << " use";
        for (int k = 0; k < face.n; ++k) text << ' ' << int{face.q[k].edgeuse};
        text << '\n';
    }
    text << "nq " << OB->nq << " mtllib " << OB->mtllib << '|';
    return text.str();
}

const std::string points4 = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n";
const std::string elements = points4 + "vt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nvn 0 1 0\nvn 1 0 0\n";

TEST_F(ObjReader, FaceCorners) {
    struct Row {
        const char* line;
        const char* expected;
    };
    const Row rows[] = {
        {"f 1/2/3 2 3", "1/2/3 2/0/0 3/0/0"},
        {"f 1//3 2//3 3//3", "1/0/3 2/0/3 3/0/3"},
        {"f -4 -3 -1", "1/0/0 2/0/0 4/0/0"},
        {"f -4/-3/-1 +2/+1 3/", "1/1/3 2/1/0 3/0/0"},
        {"F 1 2 3", "1/0/0 2/0/0 3/0/0"},
        {"fo 1 2 3 4", "1/0/0 2/0/0 3/0/0 4/0/0"},
        {"f 1/9/1 2/-4 3/-5", "1/1/1 2/0/0 3/1/0"},
        {"f 1/99999999999999999999 2 3", "1/1/0 2/0/0 3/0/0"},
        {"f 1/x/2 2/1x/3 3x/2", "1/0/2 2/1/3 3/2/0"},
        {"f 1/2/3/1 2/2//1 3", "1/2/3 2/2/0 3/0/0"},
        {"f 1//-4 2//-3 3", "1/0/0 2/0/1 3/0/0"},
        {"f 2", "2/0/0"},
        {"f\t1\v2 \t 3\x01 ", "1/0/0 2/0/0 3/0/0"},
        {" f  1 2 3", "1/0/0 2/0/0 3/0/0"},
        {"f 1.9 2 3", "1/0/0 2/0/0 3/0/0"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(read(elements + row.line + "\n"), 1) << row.line;
        EXPECT_EQ(lastFace(), row.expected) << row.line;
        EXPECT_EQ(check(*OB), nullptr) << row.line;
    }
    EXPECT_EQ(messages(), std::vector<std::string>());
}

TEST_F(ObjReader, ReplacedTextureNumberIsNoneWithoutTextureCoordinates) {
    EXPECT_EQ(read(points4 + "f 1/7 2/-2 3\n"), 1);
    EXPECT_EQ(lastFace(), "1/0/0 2/0/0 3/0/0");
}

TEST_F(ObjReader, BadLines) {
    struct Row {
        std::string text;
        const char* title;
        const char* shownLine;
        const char* last; ///< the last face
    };
    const std::string long0(30, '0');
    const Row rows[] = {
        {"v 1 2\n", "line 1 is bad: <3 args", "v 1 2", "none"},
        {"\n \t\nv 0 0 0\n#\n\r\n  vt\t7  \n", "line 3 is bad: <2 args", "  vt 7  ", "none"},
        {"vn 1\x02"
         "2\nv 1 2 3\n",
         "line 1 is bad: <3 args", "vn 1 2", "none"},
        {elements + "f 1 5 2\n", "line 11 is bad: no such vertex", "f 1 5 2", "1/0/0 0/0/0 0/0/0"},
        {elements + "f 1 0 2\n", "line 11 is bad: no such vertex", "f 1 0 2", "1/0/0 0/0/0 0/0/0"},
        {elements + "f -5 1\n", "line 11 is bad: no such vertex", "f -5 1", "0/0/0 0/0/0"},
        {elements + "f 1 a b\n", "line 11 is bad: no such vertex", "f 1 a b", "1/0/0 0/0/0 0/0/0"},
        {elements + "f 18446744073709551617\n", "line 11 is bad: no such vertex",
         "f 18446744073709551617", "0/0/0"},
        {elements + "f 1//4 2 3\n", "line 11 is bad: no such normal", "f 1//4 2 3",
         "0/0/0 0/0/0 0/0/0"},
        {elements + "f 1 2//-5\n", "line 11 is bad: no such normal", "f 1 2//-5", "1/0/0 0/0/0"},
    };
    for (const Row& row : rows) {
        shown.log.clear();
        EXPECT_EQ(read(row.text), 0) << row.text;
        EXPECT_EQ(messages(), std::vector<std::string>{std::string("message!|") + row.title + "|"
                                                       + row.shownLine});
        EXPECT_EQ(lastFace(), row.last) << row.text;
    }
}

TEST_F(ObjReader, NothingIsReadBehindABadLine) {
    EXPECT_EQ(read("v 1 1 1\nv 2\nv 3 3 3\nv 4\n"), 0);
    EXPECT_EQ(OB->np, 1);
    EXPECT_EQ(messages().size(), 1U);
}

TEST_F(ObjReader, Numbers) {
    EXPECT_EQ(read("v 1e1x abc -.5 9 9\nvt 200000 0.5 7\nvt -100000 -100000.1\nvn inf 0x7 1e999\n"),
              1);
    EXPECT_EQ(dump(), "v 10 0 -0.5\nvt 0 0.5\nvt -100000 0\nvn 0 0 inf\nnq 0 mtllib |");
}

TEST_F(ObjReader, Lines) {
    struct Row {
        std::string text;
        int points;
    };
    const std::string blanks(1000, ' ');
    const std::string note = "# " + std::string(1021, 'x');
    const Row rows[] = {
        {"v 1 2 3\nv 1 2 3", 1},
        {"v 1 2 3\r\nv 1 2 3\rv 1 2 3\n\n\rv 1 2 3\r", 4},
        {"V 1 2 3\n\tv 1 2 3\n", 2},
        {std::string("v\0001\0002\0003\n", 8), 1},
        {"v\nvt\nf\n   \nv  \t\n", 0},
        {"vv 1 2 3\nv: 1 2 3\nl 1 2\n# v 1 2 3\n", 0},
        {"\xC3\xA4 1 2 3\nv 1 2 3\xC3\n", 1},
        // A line of 1023 characters ends there; what follows is a line of its own.
        {"v 1 2" + std::string(1016, ' ') + " 3\n", 1},
        {note + "v 1 2 3\n", 1},
        {note + "v 1 2 3", 0},
        {note + blanks + "v 1 2 3\n", 1},
        {note + note + "\nv 1 2 3\n", 1},
        {"v 1 2 3" + std::string(1016, ' '), 1},
        {"v 1 2 3" + std::string(1015, ' '), 0},
        {"v 1 2 0" + std::string(1016, '0') + "v 1 2 3\n", 2},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(read(row.text), 1) << row.text;
        EXPECT_EQ(OB->np, row.points) << row.text;
    }
    const std::string digits(1200, '0');
    EXPECT_EQ(read("v 1 2 3\nf " + digits + "1 1\n"), 0);
    EXPECT_EQ(messages().back(),
              "message!|line 2 is bad: no such vertex|f " + digits.substr(0, 1021));
}

TEST_F(ObjReader, Names) {
    struct Row {
        std::string line;
        std::string group, material;
    };
    const std::string long70(70, 'n');
    const Row rows[] = {
        {"", "default", "default"},
        {"g body:left", "body", "default"},
        {"g  two\twords \t", "two words", "default"},
        {"g :x", "", "default"},
        {"G Body", "Body", "default"},
        {"g " + long70, long70.substr(0, 63), "default"},
        {"usemtl a:b c ", "default", "a:b c"},
        {"actor one:1", "one", "default"},
        {"prop two x:1", "prop___two x", "default"},
        {"g\nusemtl \t", "default", "default"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(read(row.line + "\n" + points4 + "f -3 -2 -1\n"), 1);
        EXPECT_STREQ(OB->groups[OB->faces[0].g].name, row.group.c_str()) << row.line;
        EXPECT_STREQ(OB->materials[OB->faces[0].mat].name, row.material.c_str()) << row.line;
        EXPECT_EQ(OB->materials[OB->faces[0].mat].color, defaultColor);
    }
}

TEST_F(ObjReader, NamesAreFoundAgain) {
    const std::string long70(70, 'n');
    EXPECT_EQ(read(points4 + "f 1 2 3\ng default\nusemtl default\nf 1 2 3\ng " + long70 + "\ng "
                   + long70 + "x\ng a\t\ng a:b\ng A\nusemtl m\n"),
              1);
    EXPECT_EQ(OB->ng, 4); // default, n..., a, A
    EXPECT_EQ(OB->nmat, 2);
    EXPECT_EQ(OB->curgroup, 3);
    EXPECT_EQ(read("usemtl m \ng a\n", true), 1);
    EXPECT_EQ(OB->ng, 4);
    EXPECT_EQ(OB->nmat, 2);
    EXPECT_EQ(OB->curgroup, 2);
    EXPECT_EQ(OB->curmat, 1);
}

TEST_F(ObjReader, TooManyNamesAreRefusedOnce) {
    std::string text = points4;
    for (int i = 0; i < 40'000; ++i) text += "usemtl m" + std::to_string(i) + "\nf 1 2 3\n";
    EXPECT_EQ(read(text + "usemtl m32766\nf 1 2 3\n"), 1);
    EXPECT_EQ(OB->nmat, maxIndexed);
    EXPECT_EQ(OB->faces[OB->nf - 1].mat, 32766);
    EXPECT_EQ(check(*OB), nullptr);
    EXPECT_EQ(messages().size(), 1U);
}

TEST_F(ObjReader, MaterialLibrary) {
    EXPECT_EQ(read("mtllib\nmtllib a\tb.mtl \nmtllib c.mtl\n"), 1);
    EXPECT_STREQ(OB->mtllib, "a b.mtl ");
    EXPECT_EQ(read("mtllib d.mtl\n", true), 1);
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
    EXPECT_EQ(read(text, true), 1);
    EXPECT_EQ(OB->points[2].highlighted, 0);
    EXPECT_EQ(OB->ngmax, 4096);
    EXPECT_EQ(OB->nmatmax, 4096);
    EXPECT_EQ(OB->ndmax, 0);
    EXPECT_EQ(OB->changed, 1);
    EXPECT_EQ(read(text + "v\nv 1\n"), 0);
    EXPECT_EQ(OB->ngmax, 4096);
}

TEST_F(ObjReader, FilesThatCannotBeOpenedOrRead) {
    struct Row {
        std::string path;
        const char* title;
    };
    // The last of them opens, but its first page is nowhere to be read.
    const Row rows[] = {{folder.path("missing.obj"), "I can't open this file"},
                        {folder.path(""), "I can't open this file"},
                        {"/proc/self/mem", "I can't read this file"}};
    for (const Row& row : rows) {
        shown.log.clear();
        ObjCounts counts;
        EXPECT_EQ(countObjFile(row.path, counts), 0);
        EXPECT_EQ(readObjFile(row.path, true), 0);
        const std::string message = std::string("message!|") + row.title + "|" + row.path;
        EXPECT_EQ(shown.log, (std::vector<std::string>{
                                 message, "busy|I am counting the vertexes etc in the file",
                                 message, "busy|", message}));
    }
}

/// Text made of all that matters to the splitting into lines and words.
std::string randomText(std::mt19937& random) {
    static const char* const pieces[] = {
        "v",      "vt",   "vn",     "f",     "F",         "fo",        "g",        "usemtl",
        "UseMtl", "1",    "-1",     "2/1",   "1//1",      "-2.5",      "\n",       "\n",
        "\n",     "\r\n", " ",      " ",     " ",         " ",         "\t",       "\x01",
        "abc",    "\xFF", "actor ", "prop ", "v 1 2 3\n", "f 1 2 3\n", "vt 1 1\n", "vn 1 2 3\n"};
    std::string text;
    for (auto n = random() % 60; n > 0; --n) {
        const auto pick = random() % (std::size(pieces) + 1);
        text += pick < std::size(pieces) ? pieces[pick]
                                         : std::string(random() % 140, " x/1"[random() % 4]);
    }
    return text;
}

/// The count, said plainly.
ObjCounts countPlainly(const std::string& text) {
    ObjCounts counts;
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool atEnd = text[i] == '\n' || text[i] == '\r';
        if (!atEnd) line += static_cast<unsigned char>(text[i]) <= ' ' ? ' ' : text[i];
        if (!atEnd && line.size() < maxCountedLine) continue;
        std::istringstream words(line);
        std::string keyword, word;
        words >> keyword;
        for (char& c : keyword) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        int count = 1;
        while (words >> word) ++count;
        line.clear();
        if (count < 2) continue;
        counts.faces += keyword == "f";
        counts.corners += keyword == "f" ? count : 0;
        counts.points += keyword == "v";
        counts.texcoords += keyword == "vt";
        counts.normals += keyword == "vn";
        counts.groups += keyword == "g";
        counts.materials += keyword == "usemtl";
    }
    return counts;
}

TEST_F(ObjReader, CountsAsThePlainRulesDo) {
    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    for (int i = 0; i < 20'000; ++i) {
        const std::string text = randomText(random);
        const std::string padded = text + std::string(128, '\0');
        ObjCounts counts;
        const std::size_t used = countObjLines({padded.data(), text.size()}, counts);
        const ObjCounts expected = countPlainly(text);
        EXPECT_LE(text.size() - used, maxCountedLine);
        ASSERT_EQ(counts.faces, expected.faces) << text;
        ASSERT_EQ(counts.corners, expected.corners) << text;
        ASSERT_EQ(counts.points, expected.points) << text;
        ASSERT_EQ(counts.texcoords, expected.texcoords) << text;
        ASSERT_EQ(counts.normals, expected.normals) << text;
        ASSERT_EQ(counts.groups, expected.groups) << text;
        ASSERT_EQ(counts.materials, expected.materials) << text;
    }
}

/// The same text with the keywords in capitals, which the fast parsers leave to the full rules.
std::string capitals(std::string text) {
    bool inKeyword = true;
    bool blank = true;
    std::size_t length = 0;
    for (char& c : text) {
        const bool atEnd = isLineEnd(c) || ++length == maxObjLine;
        blank = isBlank(c);
        if (inKeyword && !blank) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (length > 1 && blank) inKeyword = false;
        if (atEnd) {
            inKeyword = true;
            length = 0;
        }
    }
    return text;
}

/// Mostly good lines, in many of which one character is another one.
std::string randomObj(std::mt19937& random) {
    static const char* const lines[] = {"f 1 2 3",
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
                                        "g a:b",
                                        "usemtl m",
                                        "v 1\x01"
                                        "2 3 # x",
                                        "fo 1 2 3",
                                        "f 4 3 2 1 1 2 3 4"};
    static const std::string others = " \t\n\r/-+.:e19x\x02\xFE";
    std::string text = elements;
    for (auto n = random() % 30; n > 0; --n) {
        std::string line = lines[random() % std::size(lines)];
        if (random() % 12 == 0) line[random() % line.size()] = others[random() % others.size()];
        if (random() % 40 == 0) line.append(1000 + random() % 50, " 0"[random() % 2]);
        text += line + (random() % 5 != 0 ? "\n" : "\r\n");
    }
    return text;
}

TEST_F(ObjReader, FastAndFullParsersAgree) {
    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    int faces = 0;
    for (int i = 0; i < 1500; ++i) {
        const std::string text = randomObj(random);
        shown.log.clear();
        const int result = read(text);
        const std::string mesh = dump();
        const std::size_t boxes = shown.log.size();
        faces += OB->nf;
        ASSERT_EQ(read(capitals(text)), result) << text;
        ASSERT_EQ(dump(), mesh) << text;
        ASSERT_EQ(shown.log.size(), 2 * boxes) << text;
        // The titles are equal; the texts differ in the keyword's case.
        for (std::size_t k = 0; k < boxes; ++k) {
            const std::string& first = shown.log[k];
            EXPECT_EQ(shown.log[boxes + k].substr(0, first.rfind('|')),
                      first.substr(0, first.rfind('|')));
        }
    }
    EXPECT_GT(faces, 3000);
}

TEST_F(ObjReader, PiecesOfAFileJoin) {
    // Lines of all lengths come to lie across the ends of the pieces that the file is read in.
    std::string text(3'000'000, '#');
    const int count = 60'000;
    for (int i = 0; i < count; ++i) {
        text += '\n';
        if (i % 100 == 0) text.append(static_cast<std::size_t>(i % 1500), ' ').append("\n");
        text.append("v ").append(std::to_string(i)).append(" 0 ").append(std::to_string(i));
        text.append(".5\nf ").append(std::to_string(i + 1)).append(" -1 1");
    }
    text += '\n';
    ASSERT_EQ(read(text), 1);
    ASSERT_EQ(OB->np, count);
    ASSERT_EQ(OB->nf, count);
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(OB->points[i].z, i + 0.5);
        ASSERT_EQ(OB->faces[i].q[0].p, &OB->points[i]);
    }
}

} // namespace
} // namespace polyfab
