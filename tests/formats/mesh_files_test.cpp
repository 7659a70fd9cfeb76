// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mesh_files.h"

#include "display/options.h"
#include "formats/dxf/dxf_writer.h"
#include "formats/exchange/import_process.h"
#include "formats/obj/obj_writer.h"
#include "io/read_file.h"
#include "tests/support/file_texts.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

#include <cstring>

namespace polyfab {
namespace {

using test::Log;

class MeshFiles : public test::MeshTest {
  protected:
    MeshFiles() {
        leavesGroups = true;
        resetWorkbench();
    }
    ~MeshFiles() override {
        resetWorkbench();
        displayOptions = {};
    }

    /// The messages and questions since the last call, those for a selection left out.
    Log newLog() {
        std::erase_if(shown.log, [](const std::string& line) {
            return !line.starts_with("message") && !line.starts_with("question|do");
        });
        return std::exchange(shown.log, {});
    }

    /// Whether the mesh counts as altered afterwards.
    bool alteredAfter(void (*write)(), const std::string& path) {
        OB->changed = 1;
        shown.files = {path};
        write();
        return OB->changed != 0;
    }

    test::TempFolder folder;
};

TEST_F(MeshFiles, AnUnsoundMeshIsNotReplaced) {
    test::addCube();
    OB->faces[0].g = 9;
    readNamedMeshFile(folder.write("tri.obj", test::triangleText));
    EXPECT_EQ(newLog(),
              Log{"message!|mesh fault before reading|fac.g = 9 out of range, should be 0 to 0"});
    EXPECT_EQ(OB->nf, 6);
}

TEST_F(MeshFiles, EscapeEndsAReadAsAFailedOne) {
    std::string obj, dxf;
    while (obj.size() < 5 * PieceReader::pieceSize / 2) obj += test::triangleText;
    while (dxf.size() < PieceReader::pieceSize / 2) dxf += test::dxfFace("x", "ABCD");
    dxf += test::dxfTail;
    const struct {
        const char* name;
        std::string text;
        int looks; ///< one for each piece of a pass
    } rows[] = {{"big.obj", obj, 6},
                {"big.dxf", dxf, 2},
                {"cow.3ds", std::string("MM\0\0\x06\0", 6), 1},
                {"empty.obj", "", 0}};
    for (const auto& row : rows) {
        const std::string path = folder.write(row.name, row.text);
        for (int look = 0; look <= row.looks; ++look) {
            SCOPED_TRACE(row.name + std::to_string(look));
            test::emptyMesh();
            test::addCube();
            newLog();
            shown.escapeAfter = look;
            readNamedMeshFile(path);
            const bool stopped = look < row.looks;
            EXPECT_EQ(shown.escapeAfter, stopped ? -1 : 0);
            EXPECT_EQ(newLog(),
                      stopped ? Log{"message!|I tried to read this file but it didn't work|" + path}
                              : Log{});
            EXPECT_TRUE(!stopped || OB->np + OB->nq + OB->nf == 0);
            EXPECT_FALSE(workbench.busy);
        }
    }
}

TEST_F(MeshFiles, ReadingAndWritingTellHowFarTheyAre) {
    std::string obj = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    while (obj.size() < 3 * PieceReader::pieceSize) obj += "f 1 2 3\n";
    const std::string path = folder.write("many.obj", obj);
    readNamedMeshFile(path);
    const auto expectSteps = [&](const char* what, auto work) {
        SCOPED_TRACE(what);
        shown.log.clear();
        shown.secondsPerLook = 1;
        {
            const LongWork running(what, Escape::stopsReading);
            work();
        }
        shown.secondsPerLook = 0;
        std::erase_if(shown.log, [](const auto& line) { return !line.starts_with("progress"); });
        ASSERT_GT(shown.log.size(), 4U);
        EXPECT_EQ(shown.log.back(), "progress||0.00");
        double before = -1; // not known
        shown.log.pop_back();
        for (const std::string& line : shown.log) {
            const double now = std::stod(line.substr(line.rfind('|') + 1));
            // Tidying begins anew.
            const bool stops = line.find("(Escape stops") != std::string::npos;
            EXPECT_TRUE(now >= before || !stops) << line;
            EXPECT_TRUE(line.starts_with("progress|" + std::string(what) + " (")) << line;
            before = now;
        }
        EXPECT_GT(before, 0.8);
    };
    expectSteps("read", [&] { readNamedMeshFile(path); });
    expectSteps("obj", [&] { EXPECT_EQ(writeObjFile(*OB, folder.path("out.obj"), objPlain), 1); });
    expectSteps("dxf", [&] { EXPECT_EQ(writeDxfFile(*OB, folder.path("out.dxf")), 1); });
}

TEST_F(MeshFiles, TheSuffixChoosesTheVariant) {
    const struct {
        std::string chosen, written, face; ///< how the first face line goes on after "f"
    } rows[] = {{"B.OBJ", "B.OBJ", " 1 2 3"},
                {"c.obj-", "c.obj", " -3 -2 -1"},
                {"d.obj#", "d.obj", " 1 2 3\n ## / 0,0,0 / 1,0,0 / 0,1,0"},
                {"e.txt", "e.txt", " 1 2 3"}};
    readNamedMeshFile(folder.write("tri.obj", test::triangleText));
    for (const auto& row : rows) {
        EXPECT_FALSE(alteredAfter(writeObjMeshFile, folder.path(row.chosen)));
        EXPECT_NE(folder.read(row.written).find("\nf" + row.face), std::string::npos);
        EXPECT_EQ(workbench.fileName, folder.path(row.written));
        EXPECT_TRUE(row.chosen == row.written || !folder.has(row.chosen));
    }
    for (const auto& [write, name] :
         {std::pair(&writeDxfMeshFile, "cube.Dxf"), std::pair(&write3dsMeshFile, "cube.3ds")}) {
        EXPECT_FALSE(alteredAfter(write, folder.path(name)));
        EXPECT_TRUE(folder.has(name));
        EXPECT_TRUE(alteredAfter(write, folder.path("cube.obj")));
        EXPECT_EQ(newLog(),
                  Log{"message!|wrong suffix for this type of file|" + folder.path("cube.obj")});
        EXPECT_FALSE(folder.has("cube.obj"));
    }
    readNamedMeshFile(folder.path("cube.Dxf"));
    EXPECT_EQ(std::tuple(OB->nf, OB->np), std::tuple(1, 3));
}

TEST_F(MeshFiles, SavingGoesToTheFileThatHeldTheWholeMesh) {
    const std::string numbers = "v 0.1234567890123 1e-300 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    const std::string path = folder.write("a.obj", "# mine\nv 0 0 0 1 .5 0\n" + numbers);
    const auto saved = [&] {
        saveMeshFile();
        return std::exchange(shown.log, {});
    };
    shown.watched = true;
    readNamedMeshFile(path);
    OB->faces[0].selected = 0; // no matter
    shown.log.clear();
    EXPECT_EQ(saved(), Log{"question|do you want to save over this file?|" + path
                           + "\nnot in the mesh, and so gone from the file: 1 comment, "
                             "1 vertex colour"});
    EXPECT_EQ(shown.marked, Choice::no);
    EXPECT_TRUE(folder.read("a.obj").starts_with("# mine"));
    shown.choices = {Choice::yes};
    EXPECT_EQ(saved().size(), 3U); // the question, the note and the title
    const std::string text = folder.read("a.obj");
    EXPECT_NE(text.find("v 0.1234567890123 1e-300 0\nv 1 0 0\n"), std::string::npos);
    EXPECT_NE(text.find("f 1 2 3\n"), std::string::npos);
    EXPECT_EQ(OB->changed, 0);
    readNamedMeshFile(path); // nothing of it is lost any more
    saved();
    EXPECT_EQ(folder.read("a.obj"), text);
    // What keeps a file from being where saving goes to: it holds less, more or something else.
    folder.write("d.obj", text + "v 1 2 3");
    folder.write("e.dxf", "0\nENDSEC\n");
    const struct {
        void (*act)();
        const char* file;
        char selected = 1;
    } rows[] = {{appendMeshFile, "a.obj"},
                {writeObjMeshFile, "b.obj", 0},
                {writeObjMeshFile, "c.obj#"},
                {readMeshFile, "d.obj"},
                {readMeshFile, "e.dxf"}};
    for (const auto& row : rows) {
        readNamedMeshFile(path);
        OB->faces[0].selected = row.selected;
        shown.files = {folder.path(row.file)};
        shown.choices = {row.selected ? Choice::no : Choice::yes};
        row.act();
        shown.log.clear();
        EXPECT_EQ(saved(), Log{"file|file to write mesh to?|" + std::string(row.file)});
    }
    EXPECT_EQ(folder.read("a.obj"), text);
    // A refused write is as if it had not been tried; 3DS takes groups in that nobody selected.
    readNamedMeshFile(path);
    shown.files = {folder.path("none/a.3ds"), folder.path("a.txt"), folder.path("a.3ds")};
    write3dsMeshFile();
    writeDxfMeshFile();
    EXPECT_EQ(shown.windowTitle, "polyfab [" + path + "] ");
    EXPECT_TRUE(workbench.home.path == path);
    write3dsMeshFile();
    const std::string threeDs = folder.read("a.3ds");
    OB->faces[0].selected = 0;
    saved();
    EXPECT_EQ(folder.read("a.3ds"), threeDs);
}

TEST_F(MeshFiles, WhatImportReadsBetterIsOfferedToIt) {
    const std::string end = "0\nENDSEC\n", stl = "solid\n", face = test::triangleText;
    const std::string asked = "question|do you want me to read this file as .OBJ?|",
                      offer = "question|shall I import it?|", bad = "message!|bad suffix|",
                      failed = "message!|I tried to read this file but it didn't work|";
    const struct {
        const char* name;
        std::string bytes;
        std::vector<std::string> shown; ///< up to the path
        const char* behind = "";        ///< in the offer
    } rows[] = {
        {"a.STL", stl, {asked, offer, bad}},
        {"b.stl", stl + '\0', {offer, bad}},
        {"c.txt", stl + '\1', {bad}},
        {"d.txt", stl, {asked, bad}},
        {"e.3ds", std::string("MM\x08\0\0\0??", 8), {"message!|bad 3DS file|", failed, offer}},
        {"f.3ds", std::string("MM\x09\0\0\0??", 8), {"message!|bad 3DS file|", failed}},
        {"g.dxf", end + "0\nPOLYLINE\n", {offer}},
        {"g2.dxf", end + "0\nSOLID\n", {offer}},
        {"g3.dxf",
         std::string("AutoCAD Binary DXF\r\n\x1a\0", 22),
         {"message!|bad DXF file|", failed, offer}},
        {"h.dxf", end + "0\nLINE\n8\nMESH\n", {}},
        {"i.dxf", test::dxfFace("x", "ABCD") + end + "0\nMESH\n", {}},
        {"j.obj", face + "f 1 2 3", {offer}, "\nthe last line has no line end and was left out"},
        {"k.obj",
         face + "f" + std::string(2000, ' ') + "1 2 3\n#",
         {offer},
         "\n1 line is longer than 1,023 characters"},
        {"l.obj", face + "#" + std::string(3000, '-') + "\n  # end", {}},
        {"m.obj", face + "f 1 2 3" + '\2', {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string path = folder.write(row.name, row.bytes);
        Log expected;
        for (const std::string& line : row.shown) {
            expected.push_back(line + path + (line == offer ? row.behind : ""));
        }
        const auto shownByRead = [&] {
            readNamedMeshFile(path);
            std::erase_if(shown.log, [&](const auto& line) {
                const bool isNote = line.starts_with("note|");
                return isNote ? shown.watched : !strchr("mq", line[0]);
            });
            return std::exchange(shown.log, {});
        };
        shown.watched = true;
        EXPECT_EQ(shownByRead(), expected);
        shown.watched = false;
        int notes = 0;
        for (const auto& line : shownByRead()) notes += line.ends_with("import reads this file");
        EXPECT_EQ(notes, std::count(row.shown.begin(), row.shown.end(), offer));
    }
    shown.choices = {Choice::yes};
    readNamedMeshFile(folder.path("a.STL"));
    EXPECT_EQ(shown.marked, Choice::no);
    // An append that failed on the way does not take the old mesh with it.
    test::emptyMesh();
    test::addCube();
    shown.watched = true;
    shown.choices = {Choice::yes};
    shown.files = {folder.path("e.3ds")};
    const std::string program = std::exchange(exchangeProgram, folder.path("nowhere"));
    appendMeshFile();
    exchangeProgram = program;
    EXPECT_EQ(std::tuple(OB->nf, OB->np), std::tuple(6, 8));
}

TEST_F(MeshFiles, NotesTellWhatReadingAndWritingLose) {
    const std::string face = test::triangleText, name(70, 'n');
    const struct {
        std::string name, text, notes;
    } rows[] = {
        {"a.obj", "# c\n" + face + "s off\nv 1 2 3 1\nvt 1 2 0\n", ""},
        {"b.obj", face + "o x\ns 1\ns 2\nv 1 2 3 .1 .2 .3\n",
         "left out: 1 object name, 2 smoothing lines, 1 vertex colour; "},
        {"c.obj", face + "vt 1e6 0\nf 1/7 2/-7 3/1\ng " + name + "\ng a:b\ng a:b\ng a:c\n",
         "1 texture coordinate beyond 100,000 was read as 0; 2 corners have the number of a "
         "texture "
         "coordinate that is not there, and got the first; 1 name is longer than 63 characters and "
         "was cut; 2 group names were cut at a colon; "},
        {"d.obj", face + "f 1 2 3\\\n 1\nf 1 2 3 9 \\\n", "import reads this file; "},
        {"e.obj", face + "f 1 2 3\\\n 1\n",
         "1 line was cut at the backslash; import reads this file; "},
        {"f.obj", face + "v 0 0 0.12345678\nvn 1e-7 1234567 1\n",
         "2 numbers have more than six digits: export keeps them; "},
    };
    for (const auto& row : rows) {
        readNamedMeshFile(folder.write(row.name, row.text));
        shown.files = {folder.path("out.obj")};
        if (row.name == "f.obj") writeObjMeshFile();
        std::string notes;
        for (const std::string& line : std::exchange(shown.log, {})) {
            const bool counts = line.starts_with("note|read") || line.starts_with("note|saved");
            if (line.starts_with("note|") && !counts) notes += line.substr(5) + "; ";
        }
        EXPECT_EQ(notes, row.notes) << row.name;
    }
}

} // namespace
} // namespace polyfab
