// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_mesh.h"

#include "display/material_looks.h"
#include "formats/exchange/dxf_scene.h"
#include "formats/exchange/import_process.h"
#include "formats/exchange/import_stream.h"
#include "formats/mesh_files.h"
#include "mesh/check.h"
#include "picture/write_png.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <iomanip>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace polyfab {
namespace {

class ImportMesh : public test::MeshTest {
  protected:
    ImportMesh() : before(std::exchange(exchangeProgram, POLYFAB_PROGRAM)) {
        leavesGroups = true;
        resetWorkbench();
    }
    ~ImportMesh() override {
        exchangeProgram = before;
        resetWorkbench();
    }

    /// Makes the child a shell script.
    void useChild(const std::string& script) {
        exchangeProgram = folder.write("child", "#!/bin/sh\n" + script + "\n");
        ASSERT_EQ(chmod(exchangeProgram.c_str(), 0700), 0);
    }

    /// The reason of the failure that is shown, "" when none is.
    std::string import(const std::string& path, Choice append = Choice::no) {
        shown.files = {path};
        shown.choices = {append};
        importOtherMesh();
        return reason();
    }

    std::string exportTo(const std::string& path) {
        shown.files = {path};
        exportOtherMesh();
        return reason();
    }

    /// Gathers the notes on the way.
    std::string reason() {
        std::string found;
        noted.clear();
        for (const std::string& line : shown.log) {
            if (line.starts_with("message!|")) found = line.substr(line.find_last_of("|\n") + 1);
            if (line.starts_with("note|")) noted += line.substr(5) + "\n";
        }
        shown.log.clear();
        return found;
    }

    static std::string groups() {
        std::string names;
        for (int i = 0; i < OB->ng; ++i) names += std::string(OB->groups[i].name) + " ";
        return names;
    }

    std::string before;
    std::string noted;
    test::TempFolder folder;
};

TEST_F(ImportMesh, KeepsWhatTheFileHas) {
    // A quad with texture coordinates in a node that mirrors and moves it, twice.
    const std::string path = POLYFAB_FIXTURES "/mirrored.dae";
    EXPECT_EQ(import(path), "");
    EXPECT_EQ(std::tuple(OB->np, OB->nf, OB->nt, groups()), std::tuple(8, 2, 4, "left right "));
    EXPECT_EQ(std::tuple(OB->changed, workbench.busy), std::tuple(1, false));
    EXPECT_EQ(shown.windowTitle, "polyfab [" + path + "] ");
    // What the mirroring node makes of the quad: still seen from above, as its normal says.
    const Face& face = OB->faces[0];
    EXPECT_EQ(OB->materials[face.mat].name, std::string("clay"));
    EXPECT_EQ(OB->materials[face.mat].color, 0xFF8000U);
    std::ostringstream corners;
    for (const FaceCorner* c = face.q; c != face.q + face.n; ++c) {
        corners << c->p->x << ' ' << c->p->y << ' ' << c->p->z << ' ' << c->d->z << ' ' << c->t->u
                << "; ";
    }
    EXPECT_EQ(corners.str(), "5 1 7 1 0.75; 3 1 7 1 0.25; 3 0 7 1 0.75; 5 0 7 1 0.25; ");
    // The same name and colour: the same material.
    const int materials = OB->nmat;
    EXPECT_EQ(import(path, Choice::cancel) + import(path, Choice::yes), "");
    EXPECT_EQ(std::tuple(OB->nf, OB->np, OB->nmat), std::tuple(4, 16, materials));
    EXPECT_EQ(groups(), "left right ");
    OB->materials[OB->faces[0].mat].color = 1;
    EXPECT_EQ(import(path, Choice::yes), "");
    EXPECT_EQ(OB->nmat, materials + 1);
    EXPECT_EQ(OB->materials[materials].name, std::string("clay 2"));
    EXPECT_EQ(check(*OB), nullptr);
}

/// Of each material its colour, and of its picture the first pixel; what notes tell.
std::string seenLooks(const std::string& noted) {
    std::ostringstream text;
    for (int i = 0; i < OB->nmat; ++i) {
        text << std::hex << OB->materials[i].color << ' ';
        if (materialLooks() == nullptr) continue;
        const auto look = materialLooks()->byName.find(std::string_view(OB->materials[i].name));
        if (look == materialLooks()->byName.end() || look->second.picture == nullptr) continue;
        const Image* const image = look->second.picture->image();
        text << (image != nullptr ? image->pixels[0] : 0) << ' ';
    }
    return text.str() + (noted.find("pictures") != std::string::npos ? noted : "");
}

TEST_F(ImportMesh, PicturesGoOutAndComeBack) {
    std::filesystem::create_directories(folder.path("src/tex"));
    ASSERT_EQ(writePngFile({1, 1, {0xFF010203}}, folder.path("src/tex/a b.png")), "");
    folder.write("src/t.ppm", "P6 1 1 255 xyz");
    folder.write("src/m.mtl", "newmtl a\nKd 1 1 1\nNs 7\nd 0.5\nmap_Kd -s 2 2 -o 0 1 tex\\a b.png\n"
                              "newmtl b\nKd 0 1 0\nmap_Kd t.ppm\nnewmtl c\nKd 0 0 1\n");
    const std::string corners = "f 1/1 2/2 3/3\n";
    const std::string mesh = folder.write(
        "src/m.obj", "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nusemtl a\n"
                         + corners + "usemtl b\n" + corners + "usemtl c\n" + corners);
    for (const std::string suffix : {"glb", "gltf", "dae", "obj", "fbx", "3ds"}) {
        SCOPED_TRACE(suffix);
        ASSERT_EQ(import(mesh), "");
        EXPECT_EQ(seenLooks(noted), "ffffff ff010203 ff00 ff78797a ff ");
        // Out of a file, and out of what that holds or names.
        for (const std::string place : {"once", "twice"}) {
            std::filesystem::create_directories(folder.path(place));
            const std::string file = folder.path(place + "/" + suffix + "." + suffix);
            EXPECT_EQ(exportTo(file), "");
            EXPECT_EQ(import(file), "");
            // Collada has the picture in place of the colour.
            const std::string green = suffix == "dae" ? "ffffff" : "ff00";
            EXPECT_EQ(seenLooks(noted), "ffffff ff010203 " + green + " ff78797a ff ");
            const bool keeps = suffix == "obj" || suffix == "3ds";
            double most = 0;
            for (int i = 0; i < OB->nt; ++i) most = std::max(most, OB->texcoords[i].v);
            EXPECT_NEAR(most, keeps ? 1 : 3, 1e-6); // which say how the picture lies
        }
    }
    EXPECT_NE(folder.read("once/obj.mtl").find("\nNs 7\n"), std::string::npos);
    // A name that leads out of the folder finds nothing there.
    folder.write("src/out.gltf", folder.read("once/gltf.gltf"));
    folder.write("src/gltf.bin", folder.read("once/gltf.bin"));
    EXPECT_EQ(import(folder.path("src/out.gltf")), "");
    EXPECT_NE(noted.find("of the 2 pictures of the materials: "), std::string::npos) << noted;
    // A material is one of the mesh where it looks like it; looks of none there are forgotten.
    folder.write("src/ü.ppm", folder.read("src/t.ppm"));
    folder.write("src/m.mtl", "newmtl a\nKd 1 1 1\nmap_Kd -s 2 2 ü.ppm\nnewmtl c\nmap_Kd t.ppm\n");
    EXPECT_EQ(import(mesh), "");
    std::strcpy(OB->materials[2].name, "a 2");
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(import(folder.path("once/glb.glb"), Choice::yes), "");
        EXPECT_EQ(seenLooks(""), "ffffff ff78797a 808080 808080 ffffff ff010203 ff00 ff78797a ff ");
        EXPECT_EQ(OB->materials[3].name + std::string(OB->materials[4].name), "a 3b 2");
    }
    std::strcpy(OB->materials[1].name, "a");
    const std::pair<std::string, std::string> rows[] = {
        {"glb", "1 material has the name of another: import puts a number behind it\n"},
        {"dxf", "1 material is transparent, which is not kept\n4 materials have a picture that"},
        {"3mf", std::to_string(OB->nt) + " texture coordinates were left out"},
        {"x", "4 materials have a colour"}};
    for (const auto& [suffix, sentence] : rows) {
        EXPECT_EQ(exportTo(folder.path("src/lost." + suffix)), "");
        EXPECT_NE(noted.find(sentence), std::string::npos) << suffix << noted;
    }
    EXPECT_TRUE(folder.has("src/__.ppm")); // X files have no other names
    // Copies take the place of nothing, and come once.
    folder.write("twice/x.png", "of another model");
    std::filesystem::create_directory(folder.path("twice/x-2.png"));
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(import(folder.path("twice/glb.glb")), "");
        EXPECT_EQ(exportTo(folder.path("twice/x.fbx")), "");
        EXPECT_EQ(import(folder.path("twice/x.fbx")), "");
        EXPECT_EQ(seenLooks(noted), "ffffff ff010203 ff00 ff78797a ff ");
    }
    EXPECT_EQ(folder.read("twice/x.png"), "of another model");
    EXPECT_TRUE(folder.has("twice/x-4.png") && !folder.has("twice/x-5.png"));
    setMaterialLooks(nullptr);
}

TEST_F(ImportMesh, SavingKeepsLooksAndAsksBeforeItTouchesALibrary) {
    const std::string face = "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nusemtl a\nf 1/1 2/1 3/1\n";
    ASSERT_EQ(writePngFile({1, 1, {0xFF010203}}, folder.path("own.png")), "");
    ASSERT_EQ(writePngFile({1, 1, {0xFF040506}}, folder.path("other.png")), "");
    folder.write("m.mtl", "newmtl a\nKd 1 1 1\nmap_Kd own.png\n");
    ASSERT_EQ(import(folder.write("m.obj", "mtllib m.mtl\n" + face)), "");
    EXPECT_EQ(exportTo(folder.path("m.glb")), "");
    const auto saveAnd = [&](const std::string& read) {
        saveMeshFile();
        reason();
        EXPECT_EQ(import(folder.path(read)), "");
        return seenLooks(noted);
    };
    // A picture inside of a file comes to lie beside the mesh, and once.
    std::filesystem::create_directories(folder.path("to"));
    EXPECT_EQ(import(folder.path("m.glb")), "");
    shown.files = {folder.path("to/s.obj")};
    saveMeshFile();
    EXPECT_EQ(saveAnd("to/s.obj"), "ffffff ff010203 ");
    // A library that says otherwise counts for nothing, and is replaced only if that is wanted.
    for (const char* const says : {"map_Kd other.png", "map_Kd gone.png", "", "d 0.5"}) {
        for (const bool replaced : {false, true}) {
            SCOPED_TRACE(says);
            readNamedMeshFile(folder.path("m.obj"));
            const std::string library = folder.read("m.mtl");
            const std::string changed = std::string("newmtl a\nKd 1 1 1\n") + says + "\n";
            folder.write("m.mtl", changed);
            shown.choices = {replaced ? Choice::yes : Choice::no};
            EXPECT_EQ(saveAnd("m.obj") == "ffffff ff010203 ", replaced);
            EXPECT_EQ(folder.read("m.mtl") == changed, !replaced);
            folder.write("m.mtl", library);
        }
    }
    setMaterialLooks(nullptr);
}

// One pair a word: "code:value", with "_" for a blank.
std::string dxfText(const std::string& pairs) {
    std::istringstream words(pairs);
    std::string text;
    for (std::string word; words >> word;) {
        std::replace(word.begin(), word.end(), '_', ' ');
        text += word.replace(word.find(':'), 1, "\n") + "\n";
    }
    return text;
}

TEST_F(ImportMesh, ReadsTheSurfacesOfDxfDrawings) {
    const std::string box =
        "0:SECTION 2:BLOCKS 0:BLOCK 2:tile 10:1 20:1 30:0 0:3DFACE 8:0 62:0 10:1 20:1 "
        "11:2 21:1 12:2 22:2 13:1 23:2 0:ENDBLK 0:BLOCK 2:loop 0:INSERT 2:back "
        "0:ENDBLK 0:BLOCK 2:back 0:INSERT 2:tile 0:INSERT 2:LOOP 0:ENDBLK 0:ENDSEC 0:SECTION "
        "2:ENTITIES ";
    const std::string vertexes = "0:VERTEX 70:192 10:0 0:VERTEX 70:192 10:1 0:VERTEX 70:192 20:1 ";
    const std::string square = "0:VERTEX 10:0 0:VERTEX 20:1 0:VERTEX 10:1 0:VERTEX 10:1 20:1 ";
    const std::string longName(63, 'n'), white = " ffffff 0,0,0 1,0,0 1,1,0; ";
    const struct {
        std::string pairs;
        std::string faces; ///< group, material, colour and corners of each
        const char* note;
    } rows[] = {
        {"0:3DFACE 8:a 62:1 10:0 11:1 12:1 22:1 13:1 23:1", "default a ff0000 0,0,0 1,0,0 1,1,0; ",
         ""},
        {"0:LAYER 2:a 420:1122867 0:SOLID 8:A 10:0 11:1 12:0 22:1 13:1 23:1 0:TEXT 0:LINE "
         "0:LINE",
         "default a 112233 0,0,0 1,0,0 1,1,0 0,1,0; ", "left out as no surface: 2 LINE, 1 TEXT"},
        {"0:POLYLINE 70:64 8:a 62:1 " + vertexes
             + "0:VERTEX 70:128 71:1 72:-2 73:3 0:VERTEX 70:128 71:7 72:1 73:2 "
               "0:VERTEX 70:128 71:1 72:2 0:VERTEX 70:128 8:0 62:5 71:3 72:2 73:1 "
               "0:VERTEX 70:128 8:b 71:1 72:2 73:3",
         "default a ff0000 0,0,0 1,0,0 0,1,0; default a 2 0000ff 0,1,0 1,0,0 0,0,0; "
         "default b ff0000 0,0,0 1,0,0 0,1,0; ",
         "left out as no surface: 1 face with a vertex that is not there, 1 face without area"},
        {"0:POLYLINE 70:16 71:2 72:2 " + square, "default 0 ffffff 0,0,0 1,0,0 1,1,0 0,1,0; ", ""},
        {"0:POLYLINE 70:16 71:3 72:2 " + square + "0:3DFACE 10:5 11:6 22:7",
         "default 0 ffffff 5,0,0 6,0,0 0,7,0; ", "left out as no surface: 1 POLYLINE"},
        {"0:MESH 92:3 10:0 10:1 10:1 20:1 93:8 90:3 90:0 90:1 90:2 90:3 90:0 90:1 90:9 94:1 90:3 "
         "90:3 90:0",
         "default 0 ffffff 0,0,0 1,0,0 1,1,0; ", "left out as no surface: 1 face of a MESH"},
        {box
             + "0:INSERT 8:b 62:3 2:tile 10:5 41:2 50:90 70:2 44:-10 0:INSERT 2:none 0:INSERT "
               "2:loop",
         "tile b 00ff00 5,0,0 5,2,0 4,2,0 4,0,0; tile b 00ff00 5,-10,0 5,-8,0 4,-8,0 4,-10,0; "
         "tile 0 ffffff 0,0,0 1,0,0 1,1,0 0,1,0; ",
         "left out as no surface: 1 INSERT of a block in itself, 1 INSERT of no block"},
        {"0:LAYER 2:a_2 0:3DFACE 8:a 62:1 11:1 12:1 22:1 0:3DFACE 8:a 62:5 11:1 12:1 22:1 "
         "0:3DFACE 8:A 62:3 11:1 12:1 22:1",
         "default a ff0000 0,0,0 1,0,0 1,1,0; default a 3 0000ff 0,0,0 1,0,0 1,1,0; "
         "default a 4 00ff00 0,0,0 1,0,0 1,1,0; ",
         ""},
        {"0:3DFACE 8:" + longName + "x 11:1 12:1 22:1 0:3DFACE 8:" + longName + "y 11:1 12:1 22:1",
         "default " + longName + white + "default " + longName.substr(0, 52) + " 2" + white, ""},
        {"0:3DFACE 10:1e999 20:-inf 11:1 12:1 22:1 0:LINE 10:nan",
         "default 0 ffffff 0,0,0 1,0,0 1,1,0; ",
         "left out as no surface: 1 LINE; 2 numbers beyond all bounds were read as 0"},
        {box + "0:INSERT 2:tile 10:2e308 0:INSERT 2:tile 41:1e308 10:1e308",
         "tile 0 ffffff 0,0,0 1,0,0 1,1,0 0,1,0; "
         "tile 0 ffffff 1e+308,0,0 0,0,0 0,1,0 1e+308,1,0; ",
         "3 numbers beyond all bounds were read as 0"},
        {box + "0:INSERT 2:Tile 43:-1 42:-1 210:0 220:0 230:-1",
         "tile 0 ffffff 0,0,0 -1,0,0 -1,-1,0 0,-1,0; ", ""},
    };
    for (const auto& row : rows) {
        const std::string text = dxfText(row.pairs);
        const StreamTables tables = dxfTables(text);
        std::ostringstream faces;
        const StreamCorner* corner = tables.corners.data();
        for (const StreamFace& face : tables.faces) {
            faces << tables.groups[face.group] << ' ' << tables.materials[face.material] << ' '
                  << std::hex << std::setw(6) << std::setfill('0') << tables.colors[face.material];
            for (int k = 0; k < face.corners; ++k, ++corner) {
                const Vec3& p = tables.points[corner->point];
                faces << ' ' << std::round(p.x) << ',' << std::round(p.y) << ',' << std::round(p.z);
            }
            faces << "; ";
        }
        std::string note;
        for (const auto& line : tables.notes) note += (note.empty() ? "" : "; ") + line;
        EXPECT_EQ(faces.str() + note + tables.failure, row.faces + std::string(row.note));
    }
    const std::string path = folder.write("a.dxf", dxfText(rows[1].pairs));
    EXPECT_EQ(import(path), "");
    EXPECT_EQ(std::tuple(OB->nf, OB->np, OB->materials[0].color), std::tuple(1, 4, 0x112233U));
}

TEST_F(ImportMesh, WhateverBecomesOfTheChildTheMeshStays) {
    const struct {
        const char* child;
        const char* reason;
        int looks = 2000; ///< for Escape; far more than those that end by themselves need
    } rows[] = {{"head -c 100000 /dev/zero", "what came from the importer makes no sense"},
                {"echo some text; exit 3", "the process for other formats failed"},
                {"kill -SEGV $$", "the process for other formats crashed (SIGSEGV)"},
                {"kill -XCPU $$", "it took too long"},
                {"kill -KILL $$", "the process for other formats was killed: out of memory?"},
                {"while :; do echo text; sleep 0.01; done", "stopped by the Escape key", 3},
                {"exec sleep 100", "stopped by the Escape key", 3}};
    test::addCube();
    OB->changed = 0;
    workbench.fileName = "cube.obj";
    for (const auto& row : rows) {
        useChild(row.child);
        shown.escapeAfter = row.looks;
        EXPECT_EQ(import("model.stl", Choice::no), row.reason);
    }
    shown.escapeAfter = -1;
    useChild("exec sleep 100");
    const double patience = std::exchange(exchangePatience, 0.2);
    EXPECT_EQ(import("model.stl"), "it waited too long for something that did not come");
    exchangePatience = patience;
    exchangeProgram = folder.path("nowhere");
    EXPECT_EQ(import("model.stl"), "no process can be started");
    exchangeProgram = POLYFAB_PROGRAM;
    EXPECT_EQ(import(folder.path("none.stl")), "there is no such file");
    EXPECT_EQ(import(folder.write("x.unknown", "x")).substr(0, 24), "No suitable reader found");
    EXPECT_NE(import(folder.write("bad.ply", "ply\n")), "");
    EXPECT_EQ(std::tuple(OB->nf, OB->changed, workbench.busy), std::tuple(6, 0, false));
    EXPECT_EQ(workbench.fileName, "cube.obj");
}

TEST_F(ImportMesh, NothingIsReadButWhatLiesBesideTheFile) {
    std::filesystem::create_directories(folder.path("own/below"));
    const std::string red = "newmtl red\nKd 1 0 0\n";
    folder.write("outer.mtl", red);
    folder.write("own/red.mtl", red);
    folder.write("own/below/red.mtl", red);
    std::filesystem::create_symlink("../outer.mtl", folder.path("own/out.mtl"));
    std::filesystem::create_symlink("below/red.mtl", folder.path("own/in.mtl"));
    ASSERT_EQ(mkfifo(folder.path("own/pipe").c_str(), 0600), 0);
    const struct {
        std::string library;
        const char* reason; ///< null: it is read
    } rows[] = {{"red.mtl", nullptr},
                {"below/red.mtl", nullptr},
                {"below/../red.mtl", nullptr},
                {"in.mtl", nullptr},
                {"../outer.mtl", "lies outside its folder"},
                {folder.path("outer.mtl"), "lies outside its folder"},
                {"out.mtl", "lies outside its folder"},
                {"/dev/zero", "lies outside its folder"},
                {"pipe", "is no regular file that I can read"},
                {"below", "is no regular file that I can read"},
                {"none.mtl", "is not there"}};
    for (const auto& [library, reason] : rows) {
        const bool isRead = reason == nullptr;
        const std::string path =
            folder.write("own/a.obj", "mtllib " + library + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\n"
                                          + "usemtl red\nf 1 2 3\n");
        EXPECT_EQ(import(path), "");
        EXPECT_EQ(OB->nf, 1);
        EXPECT_EQ(OB->materials[OB->faces[0].mat].color == 0xFF0000, isRead) << library;
        const std::string told =
            isRead ? "" : "the file asks for " + library + ", which " + reason + ": left out\n";
        EXPECT_EQ(noted, "read a.obj: 3 points, 1 face\n" + told);
        readNamedMeshFile(path);
        EXPECT_EQ(this->reason() + noted, "read a.obj: 3 points, 1 face\n" + told);
    }
    // The same for what the library opens.
    for (const std::string name : {"in.bin", "../outer.bin", "out.bin", "pipe"}) {
        const std::string bytes(36, '\0');
        folder.write("outer.bin", bytes);
        folder.write("own/in.bin", bytes);
        std::filesystem::remove(folder.path("own/out.bin"));
        std::filesystem::create_symlink("../outer.bin", folder.path("own/out.bin"));
        const std::string path = folder.write(
            "own/a.gltf",
            R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":36,"uri":")" + name
                + R"("}],"bufferViews":[{"buffer":0,"byteLength":36}],"accessors":[{"bufferView":0,)"
                + R"("componentType":5126,"count":3,"type":"VEC3"}],"meshes":[{"primitives":[{)"
                + R"("attributes":{"POSITION":0}}]}],"nodes":[{"mesh":0}],"scenes":[{"nodes":[0]}]})");
        EXPECT_EQ(import(path).empty(), name == "in.bin") << name;
        EXPECT_EQ(noted.find("the file asks for " + name) == 0, name != "in.bin") << noted;
    }
    EXPECT_EQ(import(folder.path("own/pipe")), "it is no regular file");
    EXPECT_EQ(import(folder.path("own")), "it is a folder");
}

#if !defined(POLYFAB_SANITIZE)
TEST_F(ImportMesh, TakesNoMoreMemoryThanItsFileIsWorth) {
    EXPECT_EQ(import(folder.write("bomb.off", "OFF\n90000000 90000000 0\n0 0 0\n")),
              "it takes more than 1000 MB of memory, which is too much for such a file");
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 2000000000\n";
    const std::string row = "property float x\nproperty float y\nproperty float z\nend_header\n";
    EXPECT_EQ(import(folder.write("bomb.ply", head + row)),
              "it is too short for all that its header counts");
}
#endif

TEST_F(ImportMesh, ExportsWhatItImports) {
    const struct {
        const char* name;
        bool polygons, names; ///< of groups and materials, and colours
        const char* beside = "";
    } rows[] = {{"a.ply", true, false}, {"b.STL", false, false},          {"c.dae", true, true},
                {"d.fbx", true, true},  {"e.gltf", false, true, "e.bin"}, {"g.obj", true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        test::emptyMesh();
        test::addCube();
        OB->faces[1].g = static_cast<std::int16_t>(OB->addGroup("lid"));
        OB->faces[1].mat = static_cast<std::int16_t>(OB->addMaterial(0xFF0000, "red"));
        OB->faces[2].q = nullptr;
        OB->changed = 1;
        EXPECT_EQ(exportTo(folder.path(row.name)), "");
        EXPECT_TRUE(folder.has(row.beside));
        EXPECT_EQ(noted.find("cut into triangles") == noted.npos, row.polygons) << noted;
        EXPECT_EQ(noted.find("groups were left out") == noted.npos, row.names) << noted;
        EXPECT_EQ(OB->changed, 1);
        EXPECT_EQ(import(folder.path(row.name)), "");
        EXPECT_EQ(check(*OB), nullptr);
        EXPECT_EQ(OB->nf, row.polygons ? 5 : 10);
        for (const Point* p = OB->points; p != OB->points + OB->np; ++p) {
            EXPECT_TRUE(std::fabs(p->x) == 1 && std::fabs(p->y) == 1 && std::fabs(p->z) == 1);
        }
        EXPECT_TRUE(OB->np >= 8 && OB->np <= 12); // the four points of the lid may be there twice
        if (!row.names) continue;
        EXPECT_EQ(groups(), "default lid ");
        const int red = OB->findOrAddMaterial(0, "red");
        EXPECT_EQ(OB->materials[red].color, 0xFF0000U);
        const auto isRed = [&](const Face& face) { return face.mat == red; };
        EXPECT_EQ(std::count_if(OB->faces, OB->faces + OB->nf, isRed), row.polygons ? 1 : 2);
    }
}

TEST_F(ImportMesh, AnExportOverAPairLeavesThatPairAlone) {
    const std::string path = folder.path("a.gltf");
    const auto files = [&] {
        return std::distance(std::filesystem::directory_iterator(folder.path("")), {});
    };
    test::addCube();
    EXPECT_EQ(exportTo(path), "");
    const std::string cube = folder.read("a.gltf");
    folder.write("a.polyfab-new-1.bin", "what a killed export has left");
    test::addCube();
    shown.choices = {Choice::no};
    EXPECT_EQ(exportTo(path), folder.path("a.bin") + " was to be kept");
    EXPECT_EQ(folder.read("a.gltf"), cube);
    EXPECT_EQ(files(), 3);
    shown.choices = {Choice::yes};
    EXPECT_EQ(exportTo(path), "");
    EXPECT_EQ(files(), 2);
    EXPECT_EQ(import(path), "");
    EXPECT_EQ(OB->nf, 24);
}

TEST_F(ImportMesh, AFailedExportLeavesTheOldFile) {
    const std::string temporary = std::filesystem::temp_directory_path();
    const test::TempFolder scratch;
    setenv("TMPDIR", scratch.path("").c_str(), 1);
    const std::string path = folder.write("a.stl", "old");
    EXPECT_EQ(exportTo(path), "there is no face to write");
    test::addCube();
    EXPECT_EQ(exportTo(folder.write("a.zzz", "old")),
              "there is no exporter for files that end in .zzz");
    EXPECT_EQ(exportTo(folder.path("no/a.stl")), "can't open file");
    for (const char* const child : {"kill -SEGV $$", "exit 0", "cat $3", "echo > $3; exit 1"}) {
        useChild(child);
        EXPECT_NE(exportTo(path), "") << child;
    }
    EXPECT_EQ(folder.read("a.stl") + folder.read("a.zzz"), "oldold");
    OB->faces[0].selected = 0;
    exchangeProgram = POLYFAB_PROGRAM;
    shown.choices = {Choice::yes};
    EXPECT_EQ(exportTo(path), "");
    EXPECT_EQ(folder.read("a.stl").size(), 84U + 10 * 50);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path("")));
    setenv("TMPDIR", temporary.c_str(), 1);
}

TEST(ImportStream, IsReadWholeOrNotAtAll) {
    StreamTables good;
    good.points = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    good.normals = {{0, 0, 1}};
    good.texcoords = {{0.5, 0.25}};
    good.corners = {{0, 0, 0}, {1, -1, 0}, {2, 0, -1}};
    good.faces = {{3, 1, 0}};
    good.groups = {"one", "two"};
    good.materials = {"red"};
    good.colors = {0xFF0000};
    good.notes = {"it is small"};
    good.embedded = {"picture"};
    const test::TempFolder folder;
    const auto bytesOf = [&](const StreamTables& tables) {
        const int file = ::open(folder.path("stream").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        EXPECT_TRUE(writeStream(file, tables));
        ::close(file);
        return folder.read("stream");
    };
    const std::string bytes = bytesOf(good);
    StreamView view;
    ASSERT_TRUE(readStream(bytes, view));
    EXPECT_EQ(view.corners[1].texcoord, -1);
    EXPECT_EQ(view.groups, (std::vector<std::string_view>{"one", "two"}));
    EXPECT_EQ(view.notes, (std::vector<std::string_view>{"it is small"}));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        StreamView part;
        EXPECT_FALSE(readStream(std::vector<char>(bytes.data(), bytes.data() + i), part)) << i;
        std::string damaged = bytes;
        damaged[i] = '\xFF'; // a count, even a huge one, or what it is a count of
        static_cast<void>(readStream(damaged, part));
    }
    void (*const faults[])(StreamTables&) = {[](auto& t) { t.corners[0].point = 3; },
                                             [](auto& t) { t.corners[0].point = -1; },
                                             [](auto& t) { t.corners[0].texcoord = 1; },
                                             [](auto& t) { t.corners[0].normal = -2; },
                                             [](auto& t) { t.faces[0].corners = 4; },
                                             [](auto& t) { t.faces[0].corners = 2; },
                                             [](auto& t) { t.faces[0].group = 2; },
                                             [](auto& t) { t.faces[0].material = -1; },
                                             [](auto& t) { t.colors.push_back(0); },
                                             [](auto& t) { t.faces[0].corners = -3; },
                                             [](auto& t) {
                                                 t.faces.push_back({0, 0, 0});
                                             },
                                             [](auto& t) { t.looks.emplace_back().embedded = 1; }};
    for (const auto& fault : faults) {
        StreamTables tables = good;
        fault(tables);
        StreamView part;
        EXPECT_FALSE(readStream(bytesOf(tables), part)) << &fault - faults;
    }
}

} // namespace
} // namespace polyfab
