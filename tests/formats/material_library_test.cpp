// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/obj/material_library.h"

#include "display/material_looks.h"
#include "formats/mesh_files.h"
#include "formats/obj/material_lines.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/notes.h"
#include "workbench/state.h"

namespace polyfab {
namespace {

TEST(MaterialLines, APictureHasOptionsOnBothSidesAndBlanksInItsName) {
    const struct {
        const char* line;
        const char* name; ///< "": the line names none
        PicturePlacing placing{};
    } rows[] = {
        {"map_Kd a.png", "a.png"},
        {"  MAP_KD \t a b  c.png \t", "a b  c.png"},
        {"map_Kd -s 2 3 4 -clamp on -o 5 a b.png -blendu off -mm 0 1", "a b.png", {2, 3, 5, 0}},
        {"map_Kd \"a -s b.png\" -o 0 .5", "a -s b.png", {1, 1, 0, 0.5}},
        {"bump -bm 0.2 x\\y.png", "x\\y.png"},
        {"map_Kd -s 2 2 3d.png", "3d.png", {2, 2, 0, 0}},
        {"map_Kd -s 1 1 1", ""},
        {"map_Kd -imfchan", ""},
        {"map_Kd", ""},
        {"Kd 1 1 1", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto map = readMapLine(row.line);
        EXPECT_EQ(map ? map->name : "", row.name);
        const PicturePlacing got = map ? map->placing : PicturePlacing();
        EXPECT_EQ((std::array{got.uScale, got.vScale, got.uOffset, got.vOffset}),
                  (std::array{row.placing.uScale, row.placing.vScale, row.placing.uOffset,
                              row.placing.vOffset}));
    }
}

class MaterialFiles : public test::MeshTest {
  protected:
    MaterialFiles() {
        leavesGroups = true;
        resetWorkbench();
        std::filesystem::create_directories(folder.path("in/Tex"));
        folder.write("outside.png", "");
        folder.write("in/Tex/Brick 1.PNG", "");
        folder.write("in/top.tga", "");
    }
    ~MaterialFiles() override {
        resetWorkbench();
        setMaterialLooks(nullptr);
        forgetNotes();
    }

    /// A mesh with a face of each material.
    std::string mesh(const std::string& name, const std::string& head,
                     const std::vector<std::string>& materials) {
        std::string text = head + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\n";
        for (const std::string& m : materials) text += "usemtl " + m + "\nf -1 -2 -3\n";
        return folder.write(name, text);
    }

    /// Colour and picture of each material, and what was noted last.
    std::string told() {
        std::string text;
        for (int i = 0; i < OB->nmat; ++i) {
            char color[16];
            std::snprintf(color, sizeof color, " %06X", OB->materials[i].color);
            text += OB->materials[i].name + std::string(color);
            const auto& looks = materialLooks();
            if (looks == nullptr) continue;
            const auto look = looks->byName.find(std::string_view(OB->materials[i].name));
            if (look == looks->byName.end() || look->second.picture == nullptr) continue;
            text += std::filesystem::path(look->second.picture->path()).filename().string();
        }
        return text;
    }

    static bool noted(const std::string& text) { return notes().find(text) != std::string::npos; }

    test::TempFolder folder;
};

TEST_F(MaterialFiles, ALibraryGivesColoursAndPicturesToTheMaterialsOfTheRead) {
    folder.write("in/a b.mtl", "NEWMTL red\r\nkd 1 0.5 0\r\nmap_Kd -s 2 2 \"TEX\\brick 1.png\"\r\n"
                               "newmtl grey\nKd 0.2\nmap_Kd C:\\far\\top.tga # far\n"
                               "newmtl deep\nmap_Kd C:\\far\\tex\\Brick 1.PNG\n"
                               "newmtl out\nmap_Kd ../outside.png\n"
                               "newmtl unused\nKd 1 1 1\nmap_Kd gone.png");
    const std::string path =
        mesh("in/m.obj", "mtllib  a b.mtl ", {"red", "grey", "deep", "out", "none"});
    std::filesystem::create_symlink(folder.path("outside.png"), folder.path("in/outside.png"));
    readNamedMeshFile(path);
    EXPECT_EQ(told(),
              "red FF8000Brick 1.PNGgrey 333333top.tgadeep 808080Brick 1.PNGout 808080none 808080");
    EXPECT_TRUE(noted("I can't find 1 of the 4 pictures of the materials: ../outside.png"));
    EXPECT_TRUE(noted("the material libraries say nothing of 1 of the 5 materials: none"));

    // What is added has its own library, and leaves what is there as it is.
    folder.write("in/c.mtl", "newmtl red\nKd 0 0 0\nnewmtl new\nKd 0 0 1\nmap_Kd top.tga");
    shown.files = {mesh("in/n.obj", "mtllib missing.mtl c.mtl", {"red", "new"})};
    appendMeshFile();
    EXPECT_EQ(told(), "red FF8000Brick 1.PNGgrey 333333top.tgadeep 808080Brick 1.PNGout 808080"
                      "none 808080new 0000FFtop.tga");
    EXPECT_TRUE(noted("1 material has another picture in the file than in the mesh"));

    // What is gone leaves no look to a material of its name.
    OB->nf = OB->nq = OB->nmat = 0;
    shown.files = {mesh("in/o.obj", "", {"red"})};
    appendMeshFile();
    EXPECT_EQ(lookOf("red"), nullptr);

    readNamedMeshFile(mesh("in/o.obj", "", {"red"}));
    EXPECT_EQ(told(), "red 808080");
    EXPECT_EQ(materialLooks(), nullptr);
}

TEST_F(MaterialFiles, ACopyOfTheMeshTakesItsLibraryAlong) {
    const std::string text =
        "newmtl red\r\nKd 1 0 0\r\nNs 5\r\nmap_Ks tex/brick 1.png -clamp on\r\n"
        "map_d gone.png\n";
    folder.write("in/a.mtl", text);
    readNamedMeshFile(mesh("in/m.obj", "mtllib a.mtl", {"red", "none"}));
    const auto copyTo = [&](const std::string& path) {
        shown.files = {folder.path(path)};
        writeObjMeshFile();
    };
    copyTo("in/copy.obj");
    EXPECT_EQ(folder.read("in/a.mtl"), text);
    copyTo("copy.obj");
    EXPECT_EQ(folder.read("a.mtl"),
              "newmtl red\r\nKd 1 0 0\r\nNs 5\r\nmap_Ks in/Tex/Brick 1.PNG -clamp on\r\n"
              "map_d gone.png\n\nnewmtl none\nKd 0.501961 0.501961 0.501961\n");
}

TEST_F(MaterialFiles, SeveralLibrariesOfOneNameKeepTheirOwnPicturesAndGoIntoOneFile) {
    for (const char* const side : {"a", "b"}) {
        const std::string in = std::string("in/") + side;
        std::filesystem::create_directories(folder.path(in));
        folder.write(in + "/l.mtl", std::string("\xEF\xBB\xBFnewmtl ") + side
                                        + "\nKd 1 0 0\nmap_Kd t.png\nmap_d ../top.tga\n");
        folder.write(in + "/t.png", "");
    }
    readNamedMeshFile(mesh("in/m.obj", "mtllib a/l.mtl ./b/l.mtl", {"a", "b"}));
    const auto pictures = [] {
        std::string paths;
        for (const char* const name : {"a", "b"}) paths += lookOf(name)->picture->path() + "\n";
        return paths;
    };
    const std::string own = folder.path("in/a/t.png") + "\n" + folder.path("in/b/t.png") + "\n";
    EXPECT_EQ(pictures(), own);
    const auto copyTo = [&](const std::string& path) {
        std::filesystem::create_directories(
            folder.path(path).substr(0, folder.path(path).rfind('/')));
        shown.files = {folder.path(path)};
        writeObjMeshFile();
    };
    copyTo("in/copy/m.obj");
    EXPECT_EQ(folder.read("in/copy/l.mtl"),
              "newmtl a\nKd 1 0 0\nmap_Kd ../a/t.png\nmap_d ../top.tga\n"
              "newmtl b\nKd 1 0 0\nmap_Kd ../b/t.png\nmap_d ../top.tga\n");

    // What is there is left alone, whatever it is.
    folder.write("kept.mtl", "mine");
    std::filesystem::create_directories(folder.path("in/link"));
    std::filesystem::create_symlink(folder.path("kept.mtl"), folder.path("in/link/l.mtl"));
    copyTo("in/link/m.obj");
    EXPECT_EQ(folder.read("kept.mtl"), "mine");
}

} // namespace
} // namespace polyfab
