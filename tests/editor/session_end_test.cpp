// SPDX-License-Identifier: GPL-3.0-or-later
// What is on the disk when the process is told to end, in the midst of whatever.
#include "tests/editor/recovery_fixture.h"
#include "workbench/long_work.h"

namespace polyfab::test {
namespace {

/// Tells of the session's end when it is asked something, or to show progress.
struct Ending : FakePlatform {
    Choice question(const std::string&, const std::string&, Buttons) override {
        tell();
        return answer;
    }
    void showProgress(const std::string& text, double) override {
        if (!text.empty()) tell();
    }
    void tell() {
        if (std::exchange(told, true)) return;
        std::swap(OB->faces[0].n, corners);
        handleEvent({.kind = EventKind::sessionEnd});
        std::swap(OB->faces[0].n, corners);
    }
    Choice answer = Choice::no;
    decltype(Face::n) corners = 4; ///< of face 0 at that time
    bool told = false;
};

class SessionEnd : public RecoveryTest {
  protected:
    /// A cube with so many faces in a file of that name, altered.
    void cube(const std::string& name, int faces) {
        cubeIn(358);
        for (int i = faces; i < 6; ++i) OB->faces[i].q = nullptr;
        workbench.fileName = workbench.lastChosen = name;
        startHistory();
        OB->changed = 1;
    }
    static void end() { send(EventKind::sessionEnd); }
    /// The window goes, and another editor starts. The mesh that it finds: its name and live faces.
    std::pair<std::string, int> left() {
        send(EventKind::destroy);
        createMesh();
        start({Choice::yes});
        return {workbench.lastChosen, liveFaces()};
    }
    using Left = std::pair<std::string, int>;
};

TEST_F(SessionEnd, WhatWasSavedStaysWhenTheRestCanNotBe) {
    for (const bool asked : {false, true}) {
        cube("/a.obj", 5);
        rest();
        OB->faces[0].g = 9; // unsound
        end();
        if (asked) { // the user stays, and leaves without a wish to save
            shown.choices = {Choice::yes};
            send(EventKind::close);
        }
        EXPECT_EQ(left(), asked ? Left("", 0) : Left("/a.obj", 5));
        close();
    }
    cube("/a.obj", 5);
    stateFolder.clear();
    end();
    EXPECT_TRUE(showsAt(EventKind::close).at(0).starts_with("question|"));
    stateFolder = folder.path("");
}

TEST_F(SessionEnd, ReadingAnotherFileIsNotYetItsName) {
    const std::string other = folder.write("other.mesh", ""); // asks whether to read it as OBJ
    for (const std::uint64_t memory : {defaultUndoMemory(), std::uint64_t{0}}) {
        setUndoMemory(memory);
        cube("/a.obj", 4);
        {
            Ending ending;
            ending.files = {other};
            command(256);
            EXPECT_TRUE(ending.told);
        }
        EXPECT_EQ(left(), Left("/a.obj", 4));
        close();
    }
}

TEST_F(SessionEnd, AFailedReadTakesNoWorksPlace) {
    cube("/a.obj", 3);
    shown.files = {folder.write("bad.obj", "v 0 0 0\nf 1 2 3\n")};
    command(256);
    EXPECT_EQ(OB->nf, 0);
    rest();
    end();
    EXPECT_EQ(left(), Left("/a.obj", 3));
}

TEST_F(SessionEnd, MayComeWhileASaveIsWaitedFor) {
    cube("/a.obj", 6);
    {
        Ending ending;
        ending.secondsPerLook = 1;
        command(280); // long work
        EXPECT_TRUE(ending.told);
    }
    EXPECT_EQ(left(), Left("/a.obj", 6));
}

TEST_F(SessionEnd, WritesAgainWhatSomebodyRemoved) {
    cube("/a.obj", 6);
    rest();
    fs::remove(folder.path(kept().at(0) + "/mesh"));
    end();
    EXPECT_EQ(left(), Left("/a.obj", 6));
}

TEST_F(SessionEnd, AFileComesBackUnderItsWholePath) {
    cube("a.obj", 2);
    end();
    left();
    EXPECT_EQ(workbench.fileName, fs::current_path() / "a.obj");
}

TEST_F(SessionEnd, InACommandSavesWhatWasBeforeItOrElseWhatThereIs) {
    for (const bool undoes : {true, false}) {
        setUndoMemory(undoes ? defaultUndoMemory() : 0);
        cubeIn(358);
        command(291); // a step
        OB->changed = 1;
        {
            Ending ending;
            if (undoes) ending.corners = 30'000; // half done
            command(299);                        // asks
        }
        EXPECT_EQ(kept().size(), 1U);
        startRecovery();
        EXPECT_EQ(start({Choice::yes}).size(), 1U);
        EXPECT_EQ(liveFaces(), 6);
        EXPECT_EQ(OB->faces[0].n, 4);
        close();
    }
}

TEST_F(SessionEnd, IsForgottenWhenItDoesNotCome) {
    cubeIn(358);
    OB->changed = 1;
    end();
    mouse(5, 5, 0);
    key(key::shift);
    EXPECT_TRUE(showsAt(EventKind::close).at(0).starts_with("question|"));
}

TEST_F(SessionEnd, InTheQuestionLeavesAllAsItWas) {
    leaveBehind("cube.obj", 5, 1);
    const Log before = kept();
    {
        Ending ending;
        ending.answer = Choice::cancel;
        handleEvent({.kind = EventKind::start});
    }
    EXPECT_EQ(kept(), before);
    EXPECT_EQ(start({Choice::yes}), Log{"cube.obj"});
    EXPECT_EQ(liveFaces(), 5);
}

} // namespace
} // namespace polyfab::test
