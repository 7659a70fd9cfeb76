// SPDX-License-Identifier: GPL-3.0-or-later
// What is on the disk when the process is told to end, in the midst of whatever.
#include "tests/editor/recovery_fixture.h"
#include "workbench/long_work.h"

#include <functional>

namespace polyfab::test {
namespace {

/// Tells of the session's end when it is asked something, or to show progress.
struct Ending : FakePlatform {
    Choice question(const std::string&, const std::string&, Buttons, Choice) override {
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
        cubeWithFaces(faces);
        workbench.fileName = workbench.lastChosen = name;
        startHistory();
        OB->changed = 1;
    }
    static void end() { send(EventKind::sessionEnd); }
    /// The window goes, and another editor starts. The mesh that it finds: its file and live faces.
    std::pair<std::string, int> left() {
        send(EventKind::destroy);
        createMesh();
        start({Choice::yes});
        return {workbench.fileName, liveFaces()};
    }
    using Left = std::pair<std::string, int>;
};

TEST_F(SessionEnd, TheNextEditorFindsWhatWasThereOrWasSavedLast) {
    const std::string bad = folder.write("bad.obj", "v 0 0 0\nf 1 2 3\n");
    const std::string other = folder.write("other.mesh", ""); // asks whether to read it as OBJ
    const auto endIn = [&](int id, double secondsPerLook) {
        Ending ending;
        ending.files = {other};
        ending.secondsPerLook = secondsPerLook;
        command(id);
        EXPECT_TRUE(ending.told);
    };
    const auto spoil = [&] {
        rest();
        OB->faces[0].g = 9; // unsound: it can't be saved
        end();
    };
    const auto readBad = [&] { // a failed read takes no work's place
        shown.files = {bad};
        command(256);
        EXPECT_EQ(OB->nf, 0);
        rest();
        end();
    };
    const auto restAndRemove = [this] {
        rest();
        fs::remove(folder.path(kept().at(0) + "/mesh"));
        end();
    };
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"nothing more", end},
        {"in a read, whose file is not yet its name", [&] { endIn(256, 0); }},
        {"while long work waits for a save", [&] { endIn(280, 1); }},
        {"a failed read", readBad},
        {"somebody removed what was saved", restAndRemove},
        {"can't be saved", spoil}};
    for (const auto& [about, then] : rows) {
        for (const std::uint64_t memory : {defaultUndoMemory(), std::uint64_t{0}}) {
            SCOPED_TRACE(about);
            setUndoMemory(memory);
            cube("a.obj", 6);
            then();
            EXPECT_EQ(left(), Left(fs::current_path() / "a.obj", 6)) << memory;
            close();
        }
    }
    cube("a.obj", 6);
    spoil();
    shown.choices = {Choice::yes}; // the user stays, and leaves without a wish to save
    send(EventKind::close);
    EXPECT_EQ(left(), Left("", 0));
    close();
}

TEST_F(SessionEnd, WithoutASaveTheWindowAsks) {
    cubeIn(358);
    OB->changed = 1;
    const auto asksAfter = [this](auto then) {
        end();
        then();
        EXPECT_TRUE(showsAt(EventKind::close).at(0).starts_with("question|"));
    };
    asksAfter([] { mouse(5, 5, 0), key(key::shift); }); // the end has not come
    stateFolder.clear();
    asksAfter([] {});
    stateFolder = folder.path("");
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
