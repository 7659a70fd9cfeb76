// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/state.h"
#include "formats/dxf_reader.h"
#include "formats/dxf_writer.h"
#include "mesh/check.h"
#include "mesh/garbage.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <cstdio>
#include <cstring>
#include <random>

namespace polyfab {
namespace {

using Lines = std::vector<std::string>;

const std::string head = "0\nSECTION\n2\nENTITIES\n";
const std::string tail = "0\nENDSEC\n0\nEOF\n";

double height(int letter) { return letter > 1 ? (letter - 1) * (letter - 1) : 0; }

/// A 3DFACE on points in convex position: A is (0, 0, 0), B (1, 0, 0), C (2, 1, 0), D (3, 4, 0).
std::string entity(const std::string& layer, const std::string& letters) {
    std::string text = "0\n3DFACE\n" + (layer.empty() ? "" : "8\n" + layer + "\n");
    for (int k = 0; k < 4; ++k) {
        const int letter = letters[static_cast<std::size_t>(k)] - 'A';
        char fields[99];
        std::snprintf(fields, sizeof fields, "1%d\n%d.000\n2%d\n%.3f\n3%d\n0.000\n", k, letter, k,
                      height(letter), k);
        text += fields;
    }
    return text;
}

std::string withCarriageReturns(const std::string& text) {
    std::string result;
    for (const char c : text) result += c == '\n' ? "\r\n" : std::string(1, c);
    return result;
}

/// Drops the carriage returns that stand before a line feed or the end.
std::string withoutCarriageReturns(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool ends = i + 1 == text.size() || text[i + 1] == '\n';
        if (text[i] != '\r' || !ends) result += text[i];
    }
    return result;
}

/// What a read gave: boundaries, points, and each face's material and corners, as letters or in
/// full.
std::string told(int boundaries, bool letters) {
    std::ostringstream line;
    line << boundaries << " " << OB->np;
    for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
        line << " " << OB->materials[face->mat].name << ":";
        for (const FaceCorner* c = face->q; c != face->q + face->n; ++c) {
            if (letters)
                line << static_cast<char>('A' + c->p->x);
            else
                line << c->p - OB->points << '(' << c->p->x << ' ' << c->p->y << ' ' << c->p->z
                     << ')';
        }
    }
    return line.str();
}

class DxfTest : public test::MeshTest {
  protected:
    DxfTest() { resetEditorState(); }
    ~DxfTest() override { resetEditorState(); }

    std::string read(const std::string& text) {
        test::emptyMesh();
        return told(readDxfFile(fresh(text), false), true);
    }

    /// A new file each time: some file systems write out what takes a file's place.
    std::string fresh(const std::string& text) {
        return folder.write(std::to_string(++files) + ".dxf", text);
    }

    std::string written() {
        EXPECT_EQ(writeDxfFile(folder.path("out.dxf")), 1);
        return folder.read("out.dxf");
    }

    void addFaces(std::initializer_list<std::string> all) {
        for (int i = 0; i < 8; ++i) OB->addPoint(i, height(i), 0, false);
        for (const std::string& letters : all) {
            std::vector<int> list;
            for (const char letter : letters) list.push_back(letter - 'A');
            test::addFace(list);
        }
    }

    test::TempFolder folder;
    int files = 0;
};

TEST_F(DxfTest, Reading) {
    const std::string quad = entity("Wall", "ABCD");
    const std::string longName(100, 'n');
    const struct {
        std::string text, result;
    } cases[] = {
        {head + quad + entity("Wall", "BAEF") + tail, "3 6 Wall:ABCD Wall:BAEF"},
        {"0\nSECTION\n2\nHEADER\n0\nENDSEC\n" + head + quad + tail, "1 0"},
        {entity("2", "ABCD") + entity("", "ABCE") + tail, "3 5 material2:ABCD defaultmat:ABCE"},
        {entity(longName, "ABCE") + tail, "2 4 " + longName.substr(0, 63) + ":ABCE"},
        {entity("w", "AABC") + entity("v", "AABB") + tail, "3 3 w:ABC"},
        {quad + "0\r\nEOF\r", "2 4 Wall:ABCD"}};
    for (const auto& test : cases) {
        for (const std::string& text : {test.text, withCarriageReturns(test.text)}) {
            EXPECT_EQ(read(text), test.result) << text;
            EXPECT_EQ(check(*OB), nullptr) << text;
        }
    }
}

/// The rules told plainly: a library's lines and numbers, and a scan for each point.
int plainRead(const std::string& text) {
    std::string lines = withoutCarriageReturns(text);
    FILE* const file = fmemopen(lines.data(), lines.size(), "r");
    char code[256], value[256];
    double corner[4][3] = {};
    std::string layer;
    int boundaries = 0;
    bool last = false;
    while (!last && std::fgets(code, sizeof code, file) && std::fgets(value, sizeof value, file)) {
        value[std::strcspn(value, "\n")] = '\0';
        long number = 0;
        double decimal = 0;
        std::sscanf(code, "%ld", &number);
        std::sscanf(value, "%le", &decimal);
        last = std::strcmp(value, "EOF") == 0 || std::strcmp(value, "ENDSEC") == 0;
        if (!last && std::strncmp(value, "3DFACE", 6) != 0) {
            if (number == 8)
                layer = (std::isalpha(value[0]) ? "" : "material") + std::string(value);
            for (int k = 0; k < 12; ++k) {
                if (number == 10 * (k / 4 + 1) + k % 4) corner[k % 4][k / 4] = decimal;
            }
            continue;
        }
        if (boundaries++ > 0) {
            int p[4];
            for (int k = 0; k < 4; ++k) {
                p[k] = OB->findOrAddPoint(corner[k][0], corner[k][1], corner[k][2]);
            }
            if (p[0] != p[2] && p[1] != p[3]) {
                Point* list[4];
                for (int k = 0; k < 4; ++k) list[k] = OB->points + p[k];
                if (layer.empty()) layer = "defaultmat";
                Face* const face = OB->addFaceByPoints(list, 4, true);
                face->mat = static_cast<std::int16_t>(OB->findOrAddMaterial(0x808080, layer));
                layer.clear();
            }
        }
        std::memset(corner, 0, sizeof corner);
    }
    std::fclose(file);
    collectGarbage(*OB);
    return boundaries;
}

TEST_F(DxfTest, RandomFilesReadAsThePlainRulesSay) {
    std::mt19937 random(20240301);
    const auto any = [&](const Lines& list) { return list[random() % list.size()]; };
    const Lines values = {"0",  "-0", "1", " \t+1.0", "1e0", "0.1", "0.10000000000000002",
                          "-1", "."};
    const Lines odd = {"8",      "0",     "wall",    "Wall", "2",      "",    "\r",
                       "3DFACE", "7\r8 ", "3DFACES", " 10 ", "ENDSEC", "EOF", "99"};
    const Lines ends = {"\n", "\n", "\n", "\r\n"}, starts = {"", "", "  ", "+", "0", "-"};
    for (int run = 0; run < 3000; ++run) {
        std::string text = "0\n3DFACE\n";
        for (int line = 0; line < 80; ++line) {
            const auto choice = random() % 40;
            if (choice == 0) text += std::string(250 + random() % 8, '1') + any(ends);
            if (choice < 4) text += any(odd) + any(ends);
            if (choice < 8) text += "0" + any(ends) + "3DFACE" + any(ends);
            text += choice == 9 ? any(starts) : "";
            text += std::to_string(10 * (1 + random() % 3) + random() % 4) + any(ends);
            text += any(values) + any(ends);
        }
        text += any(odd) + any(ends) + "0\n" + any(odd);
        std::string results[2];
        for (std::string& result : results) {
            test::emptyMesh();
            if (run % 2 != 0) test::addCube();
            result =
                told(&result == results ? plainRead(text) : readDxfFile(fresh(text), true), false);
        }
        ASSERT_EQ(results[0], results[1]) << text;
    }
}

TEST_F(DxfTest, LinesAcrossThePiecesOfAFile) {
    const std::string quad = withCarriageReturns(entity("Wall", "ABCD"));
    std::string text = "\n", faces;
    int count = 1;
    for (; text.size() < (1 << 20) + 100; ++count) {
        text += quad;
        faces += " Wall:ABCD";
    }
    for (int shift = 0; shift < 30; ++shift) {
        ASSERT_EQ(read("999\n" + text + tail), std::to_string(count) + " 4" + faces);
        text.insert(0, "x");
    }
}

TEST_F(DxfTest, ProgressInTheTitle) {
    std::string text;
    for (int i = 0; i < 513; ++i) text += entity("w", "ABCD");
    const std::string title = std::string(127, 'x') + "\xC3\x84";
    shown.windowTitle = title + "tail";
    OB->addPoint(0, 0, 0, false);
    OB->highlightPoint(0);
    EXPECT_EQ(readDxfFile(fresh(text + tail), true), 514);
    ASSERT_GE(shown.log.size(), 3U);
    shown.log.resize(3);
    EXPECT_EQ(shown.log, (Lines{"title|  256", "title|  512", "title|" + title}));
    EXPECT_EQ(OB->np, 4);
    EXPECT_EQ(OB->points[0].highlighted, 0);
}

TEST_F(DxfTest, Writing) {
    for (const char* name : {"default", "Wall", "a\r\nb"}) OB->addMaterial(defaultColor, name);
    addFaces({"ABC", "ABCD", "ABCDE", "HGFEDC", "ABCDEFG", "AB", "A", ""});
    const int materials[] = {0, 1, 2, 3, -1, 1, 1, 1};
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].mat = static_cast<std::int16_t>(materials[i]);
    EXPECT_EQ(written(), head + entity("0", "ABCC") + entity("0", "ABCD") + "8\nWall\n"
                             + entity("0", "ABCD") + entity("0", "ADEE") + "8\na  b\n"
                             + entity("0", "HGFE") + entity("0", "HEDC") + "8\nTHE VOID\n"
                             + entity("0", "ABCD") + entity("0", "ADEF") + entity("0", "AFGG")
                             + "8\nTHE VOID\n" + tail);
    EXPECT_TRUE(shown.log.empty());
    EXPECT_TRUE(editorState.wholeMeshWritten);

    // The last entity of a face takes its material, the others "material0".
    OB->nf = 3;
    EXPECT_EQ(read(written()), "5 5 material0:ABC Wall:ABCD material0:ABCD a  b:ADE");
}

// A deleted face that is not selected is reason enough for the question.
TEST_F(DxfTest, OnlySelected) {
    addFaces({"ABC", "ABCD", "BCD", "DCB"});
    OB->faces[1].q = nullptr;
    OB->faces[1].selected = 0;
    const std::string first = entity("0", "ABCC"), last = entity("0", "DCBB");
    EXPECT_EQ(written(), head + first + entity("0", "BCDD") + last + tail);
    EXPECT_TRUE(editorState.wholeMeshWritten);
    OB->faces[2].selected = 0;
    shown.choices = {Choice::yes};
    EXPECT_EQ(written(), head + first + last + tail);
    EXPECT_FALSE(editorState.wholeMeshWritten);
    EXPECT_EQ(shown.log, Lines(2, "question||Do you want me to output only the selected parts?"));
}

TEST_F(DxfTest, FilesThatFail) {
    test::addCube();
    const std::string bad = fresh("0\nSECTION\n3DFACE\n0\n");
    const std::string missing = folder.path("missing/mesh.dxf");
    EXPECT_EQ(readDxfFile(bad, true) + readDxfFile(missing, true), 0);
    EXPECT_EQ(OB->nf, 6);
    editorState.wholeMeshWritten = true;
    EXPECT_EQ(writeDxfFile(missing), 0);
    EXPECT_TRUE(editorState.wholeMeshWritten);
    EXPECT_EQ(writeDxfFile("/dev/full"), 0);
    EXPECT_FALSE(editorState.wholeMeshWritten);
    // Of a file that can't be written the command tells.
    EXPECT_EQ(shown.log, (Lines{"message!|bad DXF file|" + bad,
                                "message!|I can't open this file|" + missing}));
}

} // namespace
} // namespace polyfab
