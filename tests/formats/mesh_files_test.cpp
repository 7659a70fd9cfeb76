// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/mesh_files.h"

#include "display/options.h"
#include "editor/state.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <algorithm>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

constexpr const char* triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

class MeshFiles : public test::MeshTest {
  protected:
    MeshFiles() { resetEditorState(); }
    ~MeshFiles() override {
        resetEditorState();
        displayOptions = {};
    }

    /// What was shown since the last call, busy notices and titles left out.
    Log newLog() {
        Log log;
        std::copy_if(shown.log.begin(), shown.log.end(), std::back_inserter(log),
                     [](const std::string& line) {
                         return !line.starts_with("busy|") && !line.starts_with("title|");
                     });
        shown.log.clear();
        return log;
    }

    /// Group tables that readings leave in the store by design.
    void read(const std::string& path) {
        Group* before = OB->groups;
        readNamedMeshFile(path);
        if (OB->groups != before) farfree(&before);
    }

    test::TempFolder folder;
};

TEST_F(MeshFiles, ReadingSetsNameTitleAndMarks) {
    const std::string path = folder.write("Tri.OBJ", triangle);
    OB->curvertex = 3;
    shown.files = {path};
    readMeshFile();
    const Log expected = {"file|file to read mesh from?|",
                          "title|collecting garbage",
                          "title|",
                          "busy|HANG ON WHILE I READ THE FILE IN",
                          "busy|I am counting the vertexes etc in the file",
                          "busy|",
                          "busy|",
                          "title|polyfab [" + path + "] "};
    EXPECT_EQ(shown.log, expected);
    EXPECT_EQ(OB->nf, 1);
    EXPECT_EQ(OB->curvertex, -1);
    EXPECT_FALSE(editorState.busy);
    EXPECT_EQ(editorState.lastChosen, "Tri.OBJ");

    shown.files = {path};
    appendMeshFile();
    EXPECT_EQ(OB->nf, 2);
    EXPECT_EQ(OB->np, 6);
    shown.files = {std::nullopt};
    readMeshFile();
    EXPECT_EQ(OB->nf, 2);
}

TEST_F(MeshFiles, OtherSuffixes) {
    const std::string path = folder.write("model.ply", triangle);
    test::addCube();
    read(path); // answered no
    const Log refused = {"question|do you want me to read this file as .OBJ?|" + path,
                         "message!|bad suffix|" + path};
    EXPECT_EQ(newLog(), refused);
    EXPECT_EQ(OB->nf, 6);
    shown.choices = {Choice::yes};
    read(path);
    EXPECT_EQ(OB->nf, 1);
    shown.choices = {Choice::yes};
    displayOptions.unselectedGrey = true; // then such a file is appended
    read(path);
    EXPECT_EQ(OB->nf, 2);
}

TEST_F(MeshFiles, AFailedReadLeavesNoGeometryButTheNames) {
    const std::string path = folder.write("bad.obj", "v 0 0 0\ng wing\nv 1 0\n");
    test::addCube();
    read(path);
    const Log expected = {"message!|line 3 is bad: <3 args|v 1 0",
                          "message!|I tried to read this file but it didn't work|" + path};
    EXPECT_EQ(newLog(), expected);
    EXPECT_EQ(OB->np + OB->nq + OB->nf, 0);
    EXPECT_EQ(OB->ng, 1);
    read(folder.path("missing.obj"));
    const Log missing = {"message!|I can't open this file|" + folder.path("missing.obj"),
                         "message!|I can't open this file|" + folder.path("missing.obj"),
                         "message!|I tried to read this file but it didn't work|"
                             + folder.path("missing.obj")};
    EXPECT_EQ(newLog(), missing);
}

TEST_F(MeshFiles, AFaultyMeshIsNotReadOver) {
    test::addCube();
    OB->faces[0].g = 9;
    read(folder.write("tri.obj", triangle));
    EXPECT_EQ(newLog().front(),
              "message!|mesh fault before reading|fac.g = 9 out of range, should be 0 to 0");
    EXPECT_EQ(OB->nf, 6);
}

TEST_F(MeshFiles, TheSuffixChoosesTheVariant) {
    struct Row {
        const char* chosen;
        const char* written;
        const char* face; ///< how the first face line goes on after "f"
    };
    const Row rows[] = {{"a.obj", "a.obj", " 1 2 3"},
                        {"B.OBJ", "B.OBJ", " 1 2 3"},
                        {"c.obj-", "c.obj", " -3 -2 -1"},
                        {"d.obj#", "d.obj", " 1 2 3\n ## / 0,0,0 / 1,0,0 / 0,1,0"},
                        {"e.txt", "e.txt", " 1 2 3"}};
    read(folder.write("tri.obj", triangle));
    for (const Row& row : rows) {
        OB->changed = 1;
        shown.files = {folder.path(row.chosen)};
        writeObjMeshFile();
        const std::string text = folder.read(row.written);
        EXPECT_NE(text.find(std::string("\nf") + row.face), std::string::npos) << text;
        EXPECT_EQ(OB->changed, 0);
        EXPECT_EQ(editorState.fileName, folder.path(row.written));
        EXPECT_TRUE(row.chosen == std::string(row.written) || !folder.has(row.chosen));
    }
}

TEST_F(MeshFiles, WhatIsNotWrittenStaysAltered) {
    test::addCube();
    const std::string nowhere = folder.path("missing/a.obj");
    const std::string cannot = "message!|can't open file|" + nowhere;
    const std::string didnt =
        "message!|I tried to write to this file but it didn't work|" + nowhere;
    struct Row {
        std::string path;
        Log messages;
    };
    const Row rows[] = {{nowhere, {cannot, cannot}},
                        {nowhere + "-", {cannot, cannot}},
                        {nowhere + "#", {cannot, didnt}},
                        {".obj", {"message!|wrong suffix for this type of file|.obj"}}};
    for (const Row& row : rows) {
        OB->changed = 1;
        shown.files = {row.path};
        writeObjMeshFile();
        Log messages = newLog();
        std::erase_if(messages, [](const std::string& l) { return !l.starts_with("message"); });
        EXPECT_EQ(messages, row.messages);
        EXPECT_EQ(OB->changed, 1);
    }
    OB->faces[0].selected = 0;
    shown.files = {folder.path("part.obj"), folder.path("part.obj")};
    shown.choices = {Choice::yes, Choice::no};
    writeObjMeshFile();
    EXPECT_EQ(OB->changed, 1); // only the selected faces were written
    writeObjMeshFile();
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(MeshFiles, TheOtherFormatsWantTheirSuffix) {
    test::addCube();
    const std::string obj = folder.path("cube.obj");
    struct Row {
        void (*write)();
        std::string path;
    };
    for (const Row& row : {Row{writeDxfMeshFile, folder.path("cube.Dxf")},
                           Row{write3dsMeshFile, folder.path("cube.3ds")}}) {
        OB->changed = 1;
        shown.files = {obj, row.path};
        row.write();
        EXPECT_EQ(newLog().back(), "message!|wrong suffix for this type of file|" + obj);
        EXPECT_FALSE(folder.has("cube.obj"));
        EXPECT_EQ(OB->changed, 1);
        row.write();
        EXPECT_EQ(OB->changed, 0);
        EXPECT_TRUE(std::filesystem::exists(row.path));
    }
    read(folder.path("cube.Dxf"));
    EXPECT_EQ(OB->nf, 6);
    EXPECT_EQ(OB->np, 8);
}

TEST_F(MeshFiles, ReadingCollectsBeforeAndTidiesAfter) {
    test::addCube();
    OB->faces[0].q = nullptr;
    shown.files = {folder.write("t.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 2 3\nf 1 2 1\n")};
    appendMeshFile();
    ASSERT_EQ(OB->nf, 7);
    EXPECT_EQ(OB->faces[5].n, 3);       // the repeated corner is gone
    EXPECT_EQ(OB->faces[6].q, nullptr); // there and back is no face
}

} // namespace
} // namespace polyfab
