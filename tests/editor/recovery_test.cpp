// SPDX-License-Identifier: GPL-3.0-or-later
// What comes back after an editor was killed, and what becomes of the files.
#include "editor/recovery/recovery_file.h"
#include "editor/recovery/recovery_folder.h"
#include "tests/editor/recovery_fixture.h"

#include <cstring>
#include <functional>
#include <thread>

namespace polyfab::test {
namespace {

const Log nothing{};

TEST_F(RecoveryTest, BringsBackEverythingAsItWas) {
    cubeIn(358);
    select({1, 4});
    OB->changed = 1;
    workbench.settable[1] = {1, std::nan(""), -0.0};
    workbench.currentEdgeFace = 2;
    workbench.currentEdgeCorner = 3;
    workbench.fileName = "/a/cube.obj";
    workbench.lastChosen = "cube.obj";
    turnView(1, 0.3, true);
    zoomView(1.7, {9, 8, 7});
    box = {{1, 2, 3}, {4, 5, 6}};
    MaterialLooks looks;
    const auto inFile = std::make_shared<PictureSource>("/a/b.png"),
               within = std::make_shared<PictureSource>("name", "P6 1 1 255 xyz");
    looks.byName = {
        {"a", {inFile, {1, 2, 3, 4}, 0.5}}, {"b", {within}}, {"c", {within}}, {"d", {}}};
    looks.libraries = {std::make_shared<MaterialLibrary>(
        MaterialLibrary{"l.mtl x", "l.mtl", "/a/l.mtl", "/a", "newmtl a\n"})};
    setMaterialLooks(std::make_shared<const MaterialLooks>(looks));
    const auto everything = [] {
        RecoveryRecord record = recoveryRecord(takeSnapshot(*OB, nullptr), presentPart());
        record.time = 0; // another second may have begun
        return packRecovery(record);
    };
    const std::string before = everything();
    saveBeforeLongWork();
    startRecovery(); // killed
    workbench.settable = {};
    setMaterialLooks(nullptr);
    EXPECT_EQ(start({Choice::yes}), Log{"cube.obj"});
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(OB->changed, 1);
    EXPECT_EQ(shown.windowTitle, "polyfab [/a/cube.obj] ");
    command(2010); // there is nothing before it
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(lookOf("c")->picture, lookOf("b")->picture);
    ASSERT_NE(lookOf("c")->picture->image(), nullptr);
    EXPECT_EQ(lookOf("c")->picture->image()->pixels[0], 0xFF78797A);
    EXPECT_EQ(lookOf("d")->picture, nullptr);
    EXPECT_EQ(materialLooks()->libraries[0]->text, "newmtl a\n");
    setMaterialLooks(nullptr);
}

TEST_F(RecoveryTest, AMeshOfManyFacesComesBackRendered) {
    cubeIn(358);
    Point* const corners[] = {OB->points, OB->points + 1, OB->points + 2};
    for (int i = 0; i <= 100'000; ++i) OB->addFaceByPoints(corners, 3, false);
    OB->changed = 1;
    saveBeforeLongWork();
    startRecovery();
    EXPECT_EQ(start({Choice::yes}).size(), 1U);
    EXPECT_TRUE(displayOptions.renderLeft && displayOptions.renderRight);
    displayOptions = {};
}

TEST_F(RecoveryTest, WhatIsAnsweredDecidesWhatStays) {
    const std::string other =
        "message|recovery|I found another mesh that I ask about when you start me again";
    const struct Row {
        std::deque<Choice> answers;
        Log asked;
        int faces;             ///< of the mesh then
        std::size_t stillKept; ///< when this editor has come to a good end
    } rows[] = {
        {{Choice::yes}, {"new", other}, 5, 1},
        {{Choice::no, Choice::yes}, {"new", "old"}, 4, 0},
        {{Choice::no, Choice::no}, {"new", "old"}, 0, 0},
        {{Choice::cancel}, {"new"}, 0, 2},
        {{Choice::no, Choice::cancel}, {"new", "old"}, 0, 1},
    };
    for (const Row& row : rows) {
        leaveBehind("new", 5, 5);
        leaveBehind("old", 4, 100);
        EXPECT_EQ(start(row.answers), row.asked);
        EXPECT_EQ(liveFaces(), row.faces);
        EXPECT_EQ(OB->changed, row.faces != 0);
        close();
        EXPECT_EQ(kept().size(), row.stillKept);
        for (const std::string& entry : kept()) fs::remove_all(folder.path(entry));
    }
}

TEST_F(RecoveryTest, AMeshThatCameBackIsNotReplacedByTheNamedFile) {
    const std::string named = folder.write("named.obj", triangle);
    for (const Choice choice : {Choice::yes, Choice::no}) {
        leaveBehind("cube.obj", 6, 1);
        const Log asked = start({choice}, named);
        const bool back = choice == Choice::yes;
        EXPECT_EQ(liveFaces(), back ? 6 : 1);
        EXPECT_EQ(asked.size(), back ? 2U : 1U); // and says so
        close();
    }
}

TEST_F(RecoveryTest, EditorsThatLiveKeepTheirFiles) {
    RecoveryFolder living = RecoveryFolder::make(stateFolder);
    ASSERT_TRUE(living);
    cubeIn(358);
    ASSERT_TRUE(writeRecoveryFile(living.file(),
                                  recoveryRecord(takeSnapshot(*OB, nullptr), presentPart())));
    leaveBehind("mine", 3, 0); // of this same process: it needs another name
    EXPECT_EQ(kept().size(), 2U);
    EXPECT_EQ(start({Choice::no, Choice::no}), Log{"mine"});
    EXPECT_TRUE(fs::exists(living.file()));
    // While one start asks, another one finds nothing to ask about.
    leaveBehind("asked", 3, 0);
    const std::vector<RecoveryFolder> asking = RecoveryFolder::leftBehind(stateFolder);
    EXPECT_EQ(asking.size(), 1U);
    EXPECT_EQ(RecoveryFolder::leftBehind(stateFolder).size(), 0U);
}

TEST_F(RecoveryTest, DamageIsToldAndTheFileKept) {
    leaveBehind("damaged", 6, 0);
    const std::string entry = kept()[0];
    const std::string whole = folder.read(entry + "/mesh");
    struct {
        std::string bytes, wrong;
    } const rows[] = {
        {whole.substr(0, whole.size() - 1), "its end is missing"},
        {whole + "x", "there is something behind its end"},
        {"", "it is no recovery file"},
        {"polyfabR\2" + whole.substr(9), "another version of the editor wrote it"},
    };
    const std::string title = "message!|I can't bring back a mesh that was not saved: ";
    for (int i = 0; i < std::ssize(rows); ++i) {
        fs::create_directories(folder.path(entry));
        folder.write(entry + "/mesh", rows[i].bytes);
        const std::string aside = entry + (i > 0 ? "-" + std::to_string(i + 1) : "") + ".kept";
        EXPECT_EQ(start({}),
                  Log{title + rows[i].wrong + "|I keep the file as " + folder.path(aside)});
        EXPECT_EQ(folder.read(aside), rows[i].bytes);
        EXPECT_FALSE(folder.has(entry));
        EXPECT_EQ(OB->nf, 0);
    }
    // What may do better another time stays where it is.
    fs::create_directories(folder.path(entry + "/mesh"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(start({}), Log{title + "it can't be opened|I try it again at the next start: "
                                 + folder.path(entry + "/mesh")});
    }
}

TEST_F(RecoveryTest, AMeshThatIsUnsoundOrAViewThatIsUselessDoesNoHarm) {
    const auto leaveAndStart = [this](auto damage) {
        cubeIn(358);
        EditorPart editor = presentPart();
        damage(editor);
        EXPECT_TRUE(writeRecoveryFile(RecoveryFolder::make(stateFolder).file(),
                                      recoveryRecord(takeSnapshot(*OB, nullptr), editor)));
        return start({Choice::yes});
    };
    const Log asked = leaveAndStart([](EditorPart& editor) {
        editor.view.scale = 1e306;
        // Current elements that are none.
        OB->curvertex = OB->curtexcoord = OB->curface = 99;
        OB->curgroup = OB->curmat = OB->curtma = OB->curprt = 99;
    });
    EXPECT_EQ(std::tuple(asked.size(), liveFaces()), std::tuple(1U, 6));
    EXPECT_LT(view.scale, 1e6);
    for (const int current : {OB->curvertex, OB->curtexcoord, OB->curface, int{OB->curgroup},
                              int{OB->curmat}, int{OB->curtma}, int{OB->curprt}}) {
        EXPECT_EQ(current, -1);
    }
    close();
    const Log told = leaveAndStart([](EditorPart&) { OB->faces[0].g = 9; });
    EXPECT_TRUE(told.at(0).starts_with("message!|I can't bring back"));
    EXPECT_EQ(OB->nf + OB->ng + OB->changed, 0);
}

TEST_F(RecoveryTest, EveryFlippedBitIsFound) {
    cubeIn(358);
    const std::string whole =
        packRecovery(recoveryRecord(takeSnapshot(*OB, nullptr), presentPart()));
    RecoveryRecord record;
    ASSERT_EQ(unpackRecovery(whole, record), "");
    EXPECT_EQ(packRecovery(record), whole);
    for (std::size_t i = 0; i < whole.size() * 8; ++i) {
        std::string bad = whole;
        bad[i / 8] = static_cast<char>(bad[i / 8] ^ 1 << i % 8);
        EXPECT_NE(unpackRecovery(bad, record), "") << i;
    }
}

TEST_F(RecoveryTest, SavesAtRestOnlyWhatIsNewAndNeverInADrag) {
    const auto saves = [this] {
        fs::path file;
        for (const std::string& entry : kept()) file = folder.path(entry + "/mesh");
        const bool written = !file.empty() && fs::file_size(file) > 0;
        if (written) std::ofstream(file, std::ios::trunc);
        return written;
    };
    rest();
    EXPECT_EQ(kept(), nothing);
    cubeIn(353);
    rest();
    EXPECT_EQ(kept(), nothing); // nothing is altered
    OB->changed = 1;
    rest();
    EXPECT_TRUE(saves());
    command(2011); // redo of nothing
    rest();
    EXPECT_FALSE(saves());
    workbench.settable[1] = {1, 2, 3}; // the mesh is the same
    rest();
    EXPECT_TRUE(saves());
    mouse(155, 155, button::left);
    mouse(165, 165, button::left);
    rest();
    EXPECT_FALSE(saves());
    mouse(165, 165, 0);
    rest();
    EXPECT_TRUE(saves());

    setRecoverySeconds(120);
    command(391); // nothing
    OB->points[0].x = 77;
    rest();
    EXPECT_FALSE(saves()); // too soon
    command(390);
    EXPECT_TRUE(saves()); // long work does not wait for that
}

TEST_F(RecoveryTest, AKilledEditorLeavesWhatWasThereAtRest) {
    const auto aThreadWrites = [this] {
        setRecoverySeconds(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));
        rest();
        OB->points[0].x = 78; // while it writes
        while (kept().empty() || !folder.has(kept()[0] + "/mesh")) std::this_thread::yield();
        rest(); // too soon for what is new
    };
    const auto theFolderGoes = [this] { // and is made anew
        for (const bool whole : {false, true}) {
            OB->points[0].x += 1;
            rest();
            ASSERT_EQ(kept().size(), 1U);
            fs::remove_all(whole ? stateFolder : folder.path(kept()[0]));
        }
        OB->points[0].x = 77;
        EXPECT_EQ(showsAt(EventKind::idle), nothing);
    };
    const auto aWholeWrite = [this] { // makes the file needless, until there is more to lose
        rest();
        EXPECT_EQ(kept().size(), 1U);
        shown.files = {folder.path("cube.obj")};
        command(259);
        EXPECT_EQ(kept(), nothing);
        OB->changed = 1;
        send(EventKind::sessionEnd);
        EXPECT_EQ(showsAt(EventKind::close), Log{"destroyed"}); // no question any more
        send(EventKind::destroy);
        createMesh();
    };
    const std::function<void()> rows[] = {rest, aThreadWrites, theFolderGoes, aWholeWrite};
    for (const auto& beforeTheEnd : rows) {
        SCOPED_TRACE(&beforeTheEnd - rows);
        setRecoverySeconds(0);
        cubeIn(358);
        OB->points[0].x = 77;
        OB->changed = 1;
        beforeTheEnd();
        startRecovery();
        EXPECT_EQ(start({Choice::yes}).size(), 1U);
        EXPECT_EQ(OB->np > 0 ? OB->points[0].x : 0, 77);
        close();
    }
}

TEST_F(RecoveryTest, WhatCanNotBeSavedIsToldOnce) {
    const std::string title = "message!|I can't write a recovery file, so save your work yourself|";
    const auto told = [&] {
        shown.log.clear();
        for (int i = 0; i < 3; ++i) rest();
        return shown.log;
    };
    cubeIn(358);
    OB->changed = 1;
    OB->faces[0].g = 9;
    EXPECT_EQ(told(), Log{title + check(*OB)});
    OB->faces[0].g = 0;
    EXPECT_EQ(told(), nothing);
    EXPECT_EQ(kept().size(), 1U);
    startRecovery();
    stateFolder = folder.write("file", "") + "/below";
    EXPECT_EQ(told(), Log{title + stateFolder});
    // Then the end of the session does not let the window go without a question.
    send(EventKind::sessionEnd);
    EXPECT_TRUE(showsAt(EventKind::close).at(0).starts_with("question|"));
    EXPECT_EQ(start({}).size(), 1U);
}

TEST_F(RecoveryTest, WhatIsNotTheEditorsStays) {
    fs::create_directories(folder.path("recovery-photos"));
    fs::create_directories(folder.path("recovery-12/more"));
    fs::create_directories(folder.path("recovery-9")); // of an editor that ended before it saved
    fs::create_directory_symlink(folder.path("recovery-photos"), folder.path("recovery-7"));
    folder.write("recovery-photos/a.txt", "mine");
    EXPECT_EQ(start({}), nothing);
    EXPECT_TRUE(folder.has("recovery-photos/a.txt"));
    EXPECT_FALSE(folder.has("recovery-photos/lock"));
    EXPECT_TRUE(folder.has("recovery-12/more"));
    EXPECT_FALSE(folder.has("recovery-9"));
    EXPECT_TRUE(folder.has("recovery-7"));
}

} // namespace
} // namespace polyfab::test
