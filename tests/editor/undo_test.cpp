// SPDX-License-Identifier: GPL-3.0-or-later
// Undo and redo of whatever the window's events do.
#include "editor/history/undo.h"

#include "editor/modes/drag.h"
#include "mesh/snapshot.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/random_user.h"
#include "tests/support/temp_folder.h"

#include <cstring>
#include <optional>
#include <sstream>

namespace polyfab::test {
namespace {

/// What the user would miss, and beside it what else has to come back to the last bit.
struct Everything {
    MeshBits mesh = bitsOf(*OB);
    std::string dump = dumpedMesh();
    std::array<Vec3, 2> settable = workbench.settable;
    int edgeFace = workbench.currentEdgeFace, edgeCorner = workbench.currentEdgeCorner;
    std::optional<bool> altered = OB->changed != 0; ///< nothing: either will do
    View view = polyfab::view;
    Box box = polyfab::box;

    /// Marks of the tools and the view may differ.
    bool hasContentOf(const Everything& other) const {
        return mesh.content == other.mesh.content && edgeFace == other.edgeFace
               && edgeCorner == other.edgeCorner
               && std::memcmp(&settable, &other.settable, sizeof settable) == 0;
    }
};

bool sameView(const View& a, const View& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// Whether the box is around what it was around, but for rounding; a turn of the view leaves it.
bool sameBox(const Everything& a, const Everything& b) {
    const View turned = turnedLike(a.view, b.view);
    const double factor = b.view.scale / a.view.scale;
    for (int i = 0; i < 3; ++i) {
        const double from = along(turned.offset, i), to = along(b.view.offset, i);
        for (const auto corner : {&Box::left, &Box::right}) {
            const double one = to + (along(a.box.*corner, i) - from) * factor;
            const double other = along(b.box.*corner, i);
            const double size = std::abs(along(a.box.*corner, i)) + std::abs(from);
            const double tolerance = std::max({1.0, std::abs(other), std::abs(to), size * factor});
            if (std::abs(one - other) > 1e-8 * tolerance) return false;
        }
    }
    return true;
}

class Undo : public WindowEvents {
  protected:
    Undo() {
        user.beforeListIsClosed = [this] { inList.emplace(); };
    }
    ~Undo() override { setUndoMemory(defaultUndoMemory()); }

    static void undo() { command(undoCommand); }
    static void redo() { command(redoCommand); }
    int below(int n) { return random.below(n); }

    /// Another mesh, with which a history begins in one of the handling modes.
    void newMesh() {
        constexpr int handling[] = {348, 349, 350, 353};
        random.fill(1 + below(14), 1 + below(12), 5);
        for (int i = 0; i < OB->np; ++i) OB->points[i].z += 0.01 * i; // hardly two in one place
        for (int i = 0; i < 3; ++i) OB->addPart(), OB->addTextureMapArea();
        fitView(*OB);
        fitBox(*OB, false);
        OB->curface = -1;
        forgetCurrentEdge();
        command(handling[below(4)]);
        stale = Stale();
        OB->changed = below(2) != 0;
        startHistory();
        user.files = {folder.write("bad.obj", "v 0 0 0\nf 1 2 3\n"), folder.write("empty.obj", "")};
        for (const char* name : {"1.obj", "1.dxf", "1.3ds", "2.obj", "none/1.obj"}) {
            user.files.push_back(folder.path(name));
        }
    }
    void actAtRandom() {
        inList.reset();
        user.act();
    }
    /// Enters into the states what became of their marks of altered meshes by the last action.
    static void followMarks(std::vector<Everything>& states, const std::string& wholeFileBefore) {
        const bool overwritten = !wholeFileBefore.empty() && workbench.wholeFile.path.empty();
        const bool written = workbench.wholeMeshWritten && OB->changed == 0;
        if (!overwritten && !written) return;
        const std::string saved = bitsOf(*OB).saved;
        for (Everything& state : states) {
            state.altered = true;
            if (written && state.mesh.saved == saved) state.altered.reset();
        }
    }
    /// The present state is this one; of the box, which goes with the view, see sameBox.
    static void expectIs(const Everything& state, const char* when) {
        const Everything now;
        ASSERT_TRUE(now.hasContentOf(state) && now.mesh == state.mesh) << when;
        ASSERT_TRUE(now.dump == state.dump) << when;
        if (state.altered) {
            ASSERT_EQ(now.altered, state.altered) << when;
        }
        ASSERT_EQ(check(*OB), nullptr) << when;
    }
    /// What the two items of the menu say; a greyed one in brackets.
    Log labels() const {
        Log list;
        for (const MenuItem& item : items()) {
            if (item.id != undoCommand && item.id != redoCommand) continue;
            list.push_back(item.enabled ? item.label : "[" + item.label + "]");
        }
        return list;
    }

    TempFolder folder;
    RandomMesh random{11};
    std::optional<Everything> inList; ///< before the last action closed a list
    /// Leaves the history, the program and other programs alone.
    RandomUser user{
        shown, [this](int n) { return below(n); }, {undoCommand, redoCommand, 262, 2001, 2002}};
};

TEST_F(Undo, BringsBackToTheLastBitWhatAnyChainOfCommandsAndDragsDid) {
    for (int round = 0; round < 150; ++round) {
        newMesh();
        std::vector<Everything> states(1);
        for (int i = 0; i < 40; ++i) {
            const std::string label = undoLabel(), wholeFile = workbench.wholeFile.path;
            actAtRandom();
            if (inList && inList->hasContentOf(states.back())) {
                states.back().altered = inList->altered; // the name stays
            } else if (inList) {
                undo();
                if (Everything().hasContentOf(*inList)) states.push_back(*inList);
                redo();
            }
            followMarks(states, wholeFile);
            SCOPED_TRACE(std::to_string(round) + ", " + std::to_string(i) + ": " + undoLabel());
            Everything now;
            if (now.hasContentOf(states.back()) && (user.fitted || sameBox(states.back(), now))) {
                states.back() = now; // no step
                ASSERT_TRUE(inList || undoLabel() == label);
                continue;
            }
            undo();
            ASSERT_NO_FATAL_FAILURE(expectIs(states.back(), "undone"));
            ASSERT_TRUE(!sameView(view, states.back().view)
                        || sameBox(states.back(), Everything()));
            redo();
            ASSERT_NO_FATAL_FAILURE(expectIs(now, "redone"));
            ASSERT_TRUE(sameView(view, now.view) && sameBox(now, Everything()));
            states.push_back(std::move(now));
        }
        const std::size_t all = states.size();
        for (std::size_t i = all - 1; i-- > 0;) {
            undo();
            ASSERT_NO_FATAL_FAILURE(expectIs(states[i], "back"));
        }
        ASSERT_EQ(undoLabel(), "");
        for (std::size_t i = 1; i < all; ++i) {
            redo();
            ASSERT_NO_FATAL_FAILURE(expectIs(states[i], "forward"));
        }
        ASSERT_EQ(redoLabel(), "");
    }
}

TEST_F(Undo, WhateverIsDoneTheMeshIsSoundAndThePictureUpToDate) {
    for (int step = 0; step < 1200; ++step) {
        if (step % 40 == 0) newMesh();
        send(EventKind::paint);
        const std::vector<std::uint32_t> before = shown.picture.pixels;
        shown.paintRequests = 0;
        actAtRandom();
        SCOPED_TRACE(std::to_string(step) + ": " + undoLabel() + ", " + workbench.modeName);
        const int requests = shown.paintRequests;
        send(EventKind::paint);
        const std::vector<std::uint32_t> now = shown.picture.pixels;
        ASSERT_TRUE(requests > 0 || now == before);
        stale = Stale();
        send(EventKind::paint);
        ASSERT_TRUE(now == shown.picture.pixels);
        ASSERT_EQ(check(*OB), nullptr);
        const int face = workbench.currentEdgeFace;
        ASSERT_TRUE(OB->curface < 0 || isLive(OB->curface));
        ASSERT_TRUE(face < 0 || (isLive(face) && workbench.currentEdgeCorner < OB->faces[face].n));
        ASSERT_TRUE(OB->curvertex < OB->np && !dragRuns());
    }
}

TEST_F(Undo, TheMenuSaysWhatAndANewChangeCutsWhatCouldBeRedone) {
    cubeIn(351);
    OB->addGroup("other");
    startHistory();
    EXPECT_EQ(run(undoCommand), (Log{"beep", "note|there is nothing to undo"}));
    EXPECT_EQ(run(redoCommand), (Log{"beep", "note|there is nothing to redo"}));
    drag(300, 200, 40, 0, button::left);
    command(291);
    EXPECT_EQ(labels(), (Log{"&undo unselect all faces", "[&redo]"}));
    undo();
    EXPECT_EQ(labels(), (Log{"&undo move faces", "&redo unselect all faces"}));
    undo();
    EXPECT_EQ(labels(), (Log{"[&undo]", "&redo move faces"}));
    command(260); // tells something
    wheel(300, 200, 1);
    command(2003);
    EXPECT_EQ(labels(), (Log{"&undo fit the box to the selected faces", "[&redo]"}));
    down(key::ctrl);
    down('1');
    click({100, 100});
    EXPECT_EQ(labels()[0], "&undo settable points");
    for (const int code : {key::ctrl, int{'1'}}) up(code);
    for (const int x : {300, 340}) mouse(x, 200, button::left);
    EXPECT_EQ(run(undoCommand), Log()); // a drag is left alone while it runs
    mouse(300, 200, 0);
    command(264);
    EXPECT_EQ(labels(), (Log{"[&undo]", "[&redo]"})); // grey in lists
    shown.dialogAnswers = {{"new name"}};
    for (const unsigned held : {button::right, 0U}) mouse(20, 8, held);
    EXPECT_EQ(undoLabel(), "rename");
    down(key::ctrl);
    drag({20, 8}, {20, 24});
    EXPECT_EQ(undoLabel(), "reorder");
    key(key::escape);
}

TEST_F(Undo, AStepIsNamedByTheActWhichTellsHowFarItMovedWhat) {
    constexpr struct {
        int mode;
        Spot from, to;
        bool ctrl;
        const char *label, *told;
    } rows[] = {
        {353, {155, 355}, {175, 355}, false, "move vertex", " by 0.2 in x, 0 in y, 0 in z"},
        {353, {155, 355}, {355, 355}, true, "weld two vertexes", "welded onto vertex "},
        {348, {255, 355}, {255, 375}, false, "move edge", "moved the edge by 0 in x, -0.2 in y, "},
        {349, {255, 255}, {255, 255}, false, "pick face", ""},
        {349, {155, 355}, {355, 155}, false, "split face", ""},
        {359, {255, 255}, {355, 255}, false, "resize faces", "resized 6 faces by a factor of 2"},
        {364, {255, 255}, {315, 255}, false, "rotate faces about x", "6 faces about x by 30 deg"},
    };
    for (const auto& row : rows) {
        cubeIn(row.mode);
        command(298);
        startHistory();
        OB->curface = 0;
        down(row.ctrl ? key::ctrl : int{'9'});
        shown.log.clear();
        drag(row.from, row.to);
        EXPECT_EQ(undoLabel(), row.label);
        const std::string last = shown.log.empty() ? "" : shown.log.back();
        EXPECT_EQ(last.substr(0, 5) == "note|", *row.told != '\0') << row.label;
        EXPECT_NE(last.find(row.told), std::string::npos) << last;
        up(row.ctrl ? key::ctrl : int{'9'});
    }
    cubeIn(349);
    shown.choices = {Choice::yes};
    OB->curface = 0;
    startHistory();
    key(key::del);
    EXPECT_EQ(undoLabel(), "delete face");
    undo();
    key(key::home); // fits the box, too
    command(2073);
    EXPECT_EQ(redoLabel(), "delete face");
}

TEST_F(Undo, WhatAReadLeftTakesNoMemoryUntilItIsChangedAndComesBackThen) {
    const std::string file = folder.write("two.obj", "v 0 0 0\nv 3 0 0\nv 0 2 0\nv 3 2 0\n"
                                                     "g a\nf 1 2 3\ng b\nf 2 4 3\n");
    const std::pair<int, void (*)()> changes[] = {
        {358, [] { command(397); }}, {351, [] { drag(200, 200, 40, 0, button::left); }}};
    for (const auto& [mode, change] : changes) {
        cubeIn(mode);
        startHistory();
        const std::string before = dump();
        const std::size_t held = snapshotBytes();
        shown.files = {file};
        command(256);
        wheel(300, 200, 1);
        command(382);
        command(mode);
        EXPECT_EQ(snapshotBytes(), held);
        const std::string read = dump();
        change();
        EXPECT_NE(dump(), read);
        undo();
        EXPECT_EQ(dump(), read);
        undo();
        EXPECT_EQ(dump(), before);
    }
}

TEST_F(Undo, TheMeshIsAlteredUnlessItIsTheOneThatWasWrittenLast) {
    // Each step a letter, see below; a "!" when the mesh is then altered.
    std::istringstream scripts(
        "a! au aur! aw awu! awur aws awsu awsuu! asw aswu aswuu! aswua! awa! awau awaw awawu! "
        "awawuu! s su saww sauu awuar! awuaw aawu! aawuur! awuaur! awaurw n! awn! awanur! e ae! "
        "aeu! aeuu awe awae! awaeuu f af! awp! awpu! awpw awl! awd p");
    folder.write("empty.obj", "");
    std::filesystem::create_symlink("a.obj", folder.path("link.obj"));
    for (std::string script; scripts >> script;) {
        SCOPED_TRACE(script);
        const bool altered = script.back() == '!';
        cubeIn(358);
        OB->addGroup("g");
        OB->changed = 0;
        startHistory();
        for (const char step : script) {
            shown.files = {folder.path(step == 'e'   ? "empty.obj"
                                       : step == 'f' ? "none.obj"
                                                     : "a.obj")};
            if (step == 'a') command(397);                // reverse faces
            if (step == 'e' || step == 'f') command(256); // reads nothing, fails to read
            if (step == 's') command(selected().empty() ? 290 : 291);
            if (step == 'n') { // a name that stays
                command(264);
                mouse(20, 8, button::right);
                down(key::escape);
            }
            if (step == 'w') command(259);
            if (step == 'd') { // a write that fails
                shown.files = {folder.path("none/a.obj")};
                command(259);
            }
            if (step == 'p' || step == 'l') { // writes a part, under the name or another one of it
                if (step == 'l') shown.files = {folder.path("link.obj")};
                select({0});
                shown.choices = {Choice::yes};
                command(259);
            }
            if (step == 'u') undo();
            if (step == 'r') redo();
        }
        EXPECT_EQ(OB->changed, altered);
    }
}

TEST_F(Undo, LeavingIsMarkedYesWhereTheMeshIsWhatWasReadAndUndoSavesToItsFile) {
    const std::string files[] = {folder.write("a.obj", triangle),
                                 folder.write("b.obj", std::string("v 0 0 1\n") + triangle)};
    // Each step a letter, see below; then the answer that is marked and the file that is saved to.
    std::istringstream scripts("a=ya ab=yb abu=ya aba=ya as=ya ae=na aeu=ya aeur=na ap=n- apu=ya");
    for (std::string script; scripts >> script;) {
        SCOPED_TRACE(script);
        reset();
        startHistory();
        for (const char step : script.substr(0, script.find('='))) {
            shown.files = {files[1]};
            if (step == 'a' || step == 'b') drop(files[step - 'a']);
            if (step == 's') command(selected().empty() ? 290 : 291);
            if (step == 'e') command(397);
            if (step == 'p') command(296);
            if (step == 'u') undo();
            if (step == 'r') redo();
        }
        send(EventKind::close);
        const std::string& home = workbench.home.path;
        const std::string told = {shown.marked == Choice::yes ? 'y' : 'n', home == files[0] ? 'a'
                                                                           : home == files[1]
                                                                               ? 'b'
                                                                               : '-'};
        EXPECT_EQ(told, script.substr(script.find('=') + 1));
    }
}

TEST_F(Undo, TheOldestStepsAreDroppedButNeverTheNewest) {
    cubeIn(358);
    setUndoMemory(1);
    startHistory();
    command(397);
    const Everything second;
    command(291);
    undo();
    expectIs(second, "undone");
    EXPECT_EQ(labels()[0], "[&undo]");
    setUndoMemory(0);
    command(397);
    command(290);
    EXPECT_EQ(run(undoCommand)[0], "beep");
    EXPECT_EQ(run(redoCommand)[0], "beep");
    setUndoMemory(defaultUndoMemory());
    command(291); // from here on
    command(290);
    EXPECT_EQ(labels()[0], "&undo select all faces");
}

} // namespace
} // namespace polyfab::test
