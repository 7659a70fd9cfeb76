// SPDX-License-Identifier: GPL-3.0-or-later
// What goes out by export and comes back by import is what it was.
#include "formats/exchange/import_mesh.h"
#include "formats/exchange/import_process.h"
#include "formats/mesh_files.h"
#include "mesh/check.h"
#include "tests/support/file_texts.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>
#include <utility>

namespace polyfab {
namespace {

class Lossless : public test::MeshTest {
  protected:
    Lossless() : before(std::exchange(exchangeProgram, POLYFAB_PROGRAM)) {
        leavesGroups = true;
        resetWorkbench();
    }
    ~Lossless() override {
        exchangeProgram = before;
        resetWorkbench();
    }

    /// The notes on what was lost, and the messages.
    std::string told(void (*command)(), const std::string& name, Choice choice = Choice::no) {
        shown.files = {folder.path(name)};
        shown.choices = {choice};
        shown.log.clear();
        command();
        std::string text;
        for (const std::string& line : shown.log) {
            const bool counts = line.starts_with("note|read ") || line.starts_with("note|saved ")
                                || line.starts_with("note|added ");
            if (line.starts_with("message") || (line.starts_with("note|") && !counts)) {
                text += line.substr(line.find('|') + 1) + "; ";
            }
        }
        return text;
    }

    std::string import(const std::string& name, Choice append = Choice::no) {
        return told(importOtherMesh, name, append);
    }
    std::string exportTo(const std::string& name) {
        return told(exportOtherMesh, name, Choice::yes);
    }

    /// Everything that is to come back, to the bit.
    static std::string whole() {
        std::ostringstream text;
        text << std::hexfloat << OB->mtllib;
        for (int i = 0; i < OB->np; ++i) {
            text << "\nv " << OB->points[i].x << ' ' << OB->points[i].y << ' ' << OB->points[i].z;
        }
        for (int i = 0; i < OB->nt; ++i) {
            text << "\nvt " << OB->texcoords[i].u << ' ' << OB->texcoords[i].v;
        }
        for (int i = 0; i < OB->nd; ++i) {
            const Normal& d = OB->normals[i];
            text << "\nvn " << d.x << ' ' << d.y << ' ' << d.z;
        }
        text << names();
        for (int i = 0; i < OB->nf; ++i) {
            const Face& face = OB->faces[i];
            text << "\nf " << face.g << ' ' << face.mat;
            for (const FaceCorner* c = face.q; c != face.q + face.n; ++c) {
                text << ' ' << c->p - OB->points << '/' << (c->t ? c->t - OB->texcoords : -1) << '/'
                     << (c->d ? c->d - OB->normals : -1);
            }
        }
        return text.str();
    }

    static std::string names() {
        std::ostringstream text;
        for (int i = 0; i < OB->ng; ++i) text << "\ng " << OB->groups[i].name;
        for (int i = 0; i < OB->nmat; ++i) {
            text << "\nm " << OB->materials[i].name << ' ' << OB->materials[i].color;
        }
        return text.str();
    }

    /// Two pieces with odd names, one of them unused, and faces in turns.
    static void addPieces() {
        test::addCube();
        for (const char* const name : {"back\\", "a:b # c", "unused"}) OB->addGroup(name);
        OB->addMaterial(0x010203, "Material #25");
        OB->addMaterial(0xFF8000, "red\xC3\xA4");
        const std::int16_t turns[] = {1, 2, 0, 2, 1, 1};
        for (int i = 0; i < 6; ++i) {
            OB->faces[i].g = turns[i];
            OB->faces[i].mat = static_cast<std::int16_t>(turns[5 - i]);
        }
    }

    std::string before;
    test::TempFolder folder;
};

TEST_F(Lossless, ObjComesBackToTheBit) {
    using Limits = std::numeric_limits<double>;
    addPieces();
    for (const double value : {0.1, 1 / 3.0, -0.0, 1e300, Limits::denorm_min(), Limits::max()}) {
        OB->addPoint(value, -value, 123456.789, false);
        OB->addTexCoord(value, 1e6);
        OB->addNormal(1e-9, value, -7);
    }
    test::Numbers many;
    for (int i = 0; i < 700; ++i) many.push_back(i % OB->np);
    FaceCorner* const corners = test::addFace(many)->q;
    for (int i = 0; i < 700; i += 3) corners[i].t = OB->texcoords + i % OB->nt;
    for (int i = 0; i < 700; i += 2) corners[i].d = OB->normals + i % OB->nd;
    const std::string expected = whole();
    for (const std::string name : {"a.obj", "b.obj-"}) {
        EXPECT_EQ(exportTo(name), "");
        EXPECT_EQ(import(name == "a.obj" ? name : "b.obj"), "");
        // Its library is new; the second export goes beside it and needs none.
        EXPECT_EQ(whole(), "a.mtl" + expected) << name;
        EXPECT_EQ(check(*OB), nullptr);
        std::istringstream lines(folder.read("a.obj"));
        for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 1023U);
    }
    // Read without import it is cut, and that is told.
    EXPECT_EQ(told(readMeshFile, "a.obj"),
              "1 line was cut at the backslash; import reads this file; left out: 3 other lines; 8 "
              "texture coordinates beyond 100,000 were read as 0; 1 group name was cut at a colon; "
              "1 face has repeated corners, which were left out; ");
}

TEST_F(Lossless, ObjIsImportedAsFarAsItGoes) {
    const std::string longName(70, 'n'), text = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1 .5 .5 .5\n";
    const struct {
        std::string text, faces, told; ///< behind the points; faces as whole() has them
    } rows[] = {
        {"f 1 2 3", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1", ""},
        {"# C:\\models\\\nf 1 2 3\\", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1", ""},
        {"f 1 \\\r\n2 3 \\\n4", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1 3/-1/-1", ""},
        {"f" + std::string(5000, ' ') + "1 2 3 # 4 5", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1", ""},
        {"f 1 2 9\nf 1 2\nf\nf 1 x 3\nf 1/8/7 2 3", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1",
         "2 faces were left out: there is no vertex of a corner's number; 2 faces of fewer than 3 "
         "corners were left out; 1 corner has the number of a normal that is not there, and got "
         "none; 1 corner has the number of a texture coordinate that is not there, and got none; "},
        {"vn 1\nvt 1e999\nvt 1e7 2\nf 1/2/1 2//1 3\n", "\nf 0 0 0/1/0 1/-1/0 2/-1/-1",
         "1 line has too few numbers; they count as 0; 1 number beyond all bounds was read as 0; "},
        {"o " + longName + "\nf 1 2 3", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1",
         "1 name is longer than 63 characters and was cut; "},
        {"s 1\nmtllib none.mtl\nf 1 2 3", "\nf 0 0 0/-1/-1 1/-1/-1 2/-1/-1",
         "left out: 1 smoothing line, 1 vertex colour; the file asks for none.mtl, which is not "
         "there: left out; "},
    };
    for (const auto& row : rows) {
        folder.write("a.obj", "\xEF\xBB\xBF" + text + row.text);
        const std::string colour = "left out: 1 vertex colour; ";
        const bool tellsColour = row.told.starts_with("left");
        EXPECT_EQ(import("a.obj"), (tellsColour ? "" : colour) + row.told);
        const std::string all = whole();
        EXPECT_EQ(all.substr(std::min(all.find("\nf "), all.size())), row.faces);
        EXPECT_EQ(check(*OB), nullptr);
    }
    // A part of the mesh, and then not a thing.
    test::emptyMesh();
    addPieces();
    const std::string mesh = whole();
    shown.escapeAfter = 0;
    EXPECT_NE(import("a.obj", Choice::yes), "");
    shown.escapeAfter = 0;
    EXPECT_NE(import("a.obj"), "");
    shown.escapeAfter = -1;
    EXPECT_NE(import("none.obj"), "");
    EXPECT_EQ(whole(), mesh);
}

TEST_F(Lossless, ThreeDsKeepsAxesNamesAndColours) {
    addPieces();
    const std::string expected = names();
    OB->points[0].x = 0.1F;
    OB->addTexCoord(0.5, 0.25);
    OB->faces[0].q[0].t = OB->texcoords;
    for (const bool exported : {false, true}) {
        const std::string cut = "6 faces have more than 3 corners and were cut into triangles; ";
        EXPECT_EQ(exported ? exportTo("b.3ds") : told(write3dsMeshFile, "a.3ds"),
                  cut + (exported ? "" : "1 texture coordinate was left out: export keeps it; "));
        std::ostringstream corners;
        for (const FaceCorner* c = OB->faces[0].q; c != OB->faces[0].q + 3; ++c) {
            corners << c->p->x << ' ' << c->p->y << ' ' << c->p->z << "; ";
        }
        if (!exported) continue;
        for (const std::string name : {"a.3ds", "b.3ds"}) {
            EXPECT_EQ(import(name), "");
            EXPECT_EQ(OB->nf, 12);
            EXPECT_EQ(OB->nt > 0, name == "b.3ds");
            for (int i = 1; i < OB->nmat; ++i) {
                const std::string material = OB->materials[i].name;
                EXPECT_NE(expected.find(material + " " + std::to_string(OB->materials[i].color)),
                          std::string::npos);
            }
            std::ostringstream now;
            const Face& face = OB->faces[OB->groups[0].name == std::string("default") ? 2 : 0];
            for (const FaceCorner* c = face.q; c != face.q + 3; ++c) {
                now << c->p->x << ' ' << c->p->y << ' ' << c->p->z << "; ";
            }
            EXPECT_EQ(now.str(), corners.str());
            EXPECT_STREQ(OB->groups[face.g].name, "back\\");
        }
    }
    const std::string bytes = folder.read("b.3ds");
    for (std::size_t length = 0; length < bytes.size(); length += 7) {
        folder.write("c.3ds", bytes.substr(0, length));
        test::emptyMesh();
        if (length % 70 == 0) static_cast<void>(import("c.3ds"));
        EXPECT_EQ(check(*OB), nullptr);
    }
}

TEST_F(Lossless, DxfKeepsSmallFacesByExport) {
    addPieces();
    for (int i = 0; i < OB->np; ++i) {
        OB->points[i].x *= 1e-4;
        OB->points[i].y *= 1e-4;
        OB->points[i].z *= 1e-4;
    }
    OB->addPoint(9, 9, 9, false); // of no face
    const std::string groups = "3 groups were left out: a DXF file has none; ";
    const std::string loose = "1 point of no face was left out; ";
    EXPECT_EQ(told(writeDxfMeshFile, "a.dxf"),
              "24 numbers have more than three decimals: export keeps them; 6 faces have no area "
              "left in three decimals: export keeps them; "
                  + groups + "2 materials have a colour that was left out: export keeps them; "
                  + loose);
    EXPECT_EQ(exportTo("b.dxf"), groups + loose);
    EXPECT_EQ(import("b.dxf"), "");
    EXPECT_EQ(std::tuple(OB->nf, OB->np), std::tuple(6, 8));
    EXPECT_EQ(std::fabs(OB->points[0].x), 1e-4);
    EXPECT_NE(names().find("\nm Material #25 66051"), std::string::npos);
    const double x = OB->points[0].x;
    EXPECT_EQ(told(readMeshFile, "b.dxf"), "");
    EXPECT_EQ(std::tuple(OB->nf, OB->points[0].x), std::tuple(6, x));
}

} // namespace
} // namespace polyfab
