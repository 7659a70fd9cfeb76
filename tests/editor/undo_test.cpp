// SPDX-License-Identifier: GPL-3.0-or-later
// Undo and redo of whatever the window's events do.
#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"

#include "editor/command_table.h"
#include "editor/modes/drag.h"
#include "mesh/snapshot.h"
#include "tests/editor/window_fixture.h"
#include "tests/mesh/random_mesh.h"
#include "tests/support/temp_folder.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace polyfab::test {
namespace {

template <typename... Values>
void add(std::string& text, const Values&... values) {
    (text.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
}

/// What the user would miss, and beside it what else has to come back to the last bit.
struct Everything {
    std::string content, scratch, dump;
    std::string saved;           ///< the part of the content that files hold
    std::optional<bool> altered; ///< nothing: either will do
    View view;
    Box box;
};

bool sameView(const View& a, const View& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// Whether the box is around what it was around, but for rounding; a turn of the view leaves it.
bool sameBox(const Everything& a, const Everything& b) {
    const bool turned = std::memcmp(a.view.rotation, b.view.rotation, sizeof(View::rotation)) != 0;
    const double factor = turned ? 1 : b.view.scale / a.view.scale;
    for (int i = 0; i < 3; ++i) {
        const double from = turned ? 0 : along(a.view.offset, i);
        const double to = turned ? 0 : along(b.view.offset, i);
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

Everything everything() {
    const Mesh& m = *OB;
    Everything all;
    const auto addAll = [&all](const auto* array, int count) {
        for (int i = 0; i < count; ++i) add(all.content, array[i]);
    };
    add(all.content, m.np, m.nq, m.nf, m.nd, m.nt, m.ng, m.nmat, m.ntma, m.nprt, m.curvertex,
        m.curtexcoord, m.curface, m.curgroup, m.curmat, m.curtma, m.curprt, m.mtllib,
        workbench.settable, workbench.currentEdgeFace, workbench.currentEdgeCorner);
    add(all.scratch, m.npmax, m.nqmax, m.nfmax);
    for (const Point* p = m.points; p != m.points + m.np; ++p) {
        add(all.saved, p->x, p->y, p->z);
        add(all.scratch, p->mark, p->highlighted, p->mark3, p->onselected);
    }
    for (const TexCoord* t = m.texcoords; t != m.texcoords + m.nt; ++t) {
        add(all.content, t->u, t->v);
        add(all.scratch, t->onselected);
    }
    const auto number = [](const auto* array, const auto* element) {
        return element != nullptr ? indexIn(array, element) : -1;
    };
    for (const FaceCorner* q = m.corners; q != m.corners + m.nq; ++q) {
        add(all.saved, number(m.points, q->p), number(m.normals, q->d), number(m.texcoords, q->t));
        add(all.scratch, q->edgeuse, q->mark);
    }
    for (const Face* f = m.faces; f != m.faces + m.nf; ++f) {
        add(all.saved, number(m.corners, f->q), f->n, f->mat, f->g);
        add(all.content, f->tma, f->prt, f->selected);
    }
    for (int i = 0; i < m.ng; ++i) add(all.saved, m.groups[i].name);
    for (int i = 0; i < m.nmat; ++i) add(all.saved, m.materials[i].name);
    addAll(m.normals, m.nd);
    addAll(m.groups, m.ng);
    addAll(m.materials, m.nmat);
    addAll(m.tmas, m.ntma);
    addAll(m.parts, m.nprt);
    all.content += all.saved;
    all.altered = m.changed != 0;
    all.dump = dumpedMesh();
    all.view = view;
    all.box = box;
    return all;
}

/// The commands that leave the history, the program and other programs alone.
std::vector<int> commandsToTry() {
    std::vector<int> ids;
    const std::set<int> left{undoCommand, redoCommand, 262, 2001, 2002};
    for (const Command& command : commandTable()) {
        if (command.handler != nullptr && !left.contains(command.id)) ids.push_back(command.id);
    }
    return ids;
}

/// Those that read and write files, which come too seldom among all others.
constexpr int fileCommands[] = {256, 296, 257, 258, 259};

class Undo : public WindowEvents {
  protected:
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
        folder.write("bad.obj", "v 0 0 0\nf 1 2 3\n");
        folder.write("empty.obj", "");
    }
    void answerAtRandom() {
        const char* const names[] = {"1.obj", "1.dxf", "1.3ds", "2.obj", "bad.obj", "empty.obj"};
        const char* const words[] = {"1", "0.5", "x", "Y", "2", "90", "-1", "abc", "", "1e300"};
        for (int i = 0; i < 4; ++i) {
            shown.files.push_back(folder.path(below(6) == 0 ? "none/1.obj" : names[below(6)]));
            shown.choices.push_back(Choice(below(3) - 1));
            shown.dialogAnswers.push_back({words[below(10)], words[below(10)], words[below(10)]});
            shown.dialogResults.push_back(DialogResult(std::max(below(6) - 3, 0)));
        }
        shown.escapeAfter = below(8) == 0 ? below(4) : -1;
    }
    /// Anywhere, but mostly by a point, so that something is hit.
    Spot spot() {
        if (OB->np > 0 && below(4) != 0) {
            if (stale.points) transformPoints(*OB);
            const Point& p = OB->points[below(OB->np)];
            const double x = below(2) != 0 ? p.sx : p.sz + 513;
            if (std::abs(x) < 1500 && std::abs(p.sy) < 500) {
                return Spot{int(x), int(p.sy)} + Spot{below(9) - 4, below(9) - 4};
            }
        }
        return {below(shown.size.width), below(shown.size.height)};
    }
    void dragAtRandom() {
        constexpr int held[] = {key::ctrl, key::shift, '1', '2'};
        for (const int code : held) {
            if (below(4) == 0) down(code);
        }
        const Spot from = spot();
        const unsigned buttons = 1 + static_cast<unsigned>(below(3));
        mouse(from, buttons);
        for (int i = below(3); i > 0; --i) mouse(spot(), buttons);
        if (below(8) == 0) down(key::escape);
        mouse(below(2) != 0 ? from : spot(), 0);
        for (const int code : {key::ctrl, key::shift, int('1'), int('2'), key::escape}) up(code);
    }
    /// Some picks in the open list, or a rename or reorder, and out of it.
    void useListAtRandom() {
        const auto cell = [this] { return Spot{20 + 200 * below(2), 8 + 16 * below(6)}; };
        const Spot at = cell();
        const bool picks = below(3) == 0;
        down(key::ctrl);
        if (picks) {
            for (int i = below(4); i >= 0; --i) click(cell());
        } else if (below(2) == 0) {
            drag(at, cell());
        } else {
            mouse(at, 0);
            mouse(at, button::right);
            mouse(at, 0);
        }
        up(key::ctrl);
        if (!picks) inList = everything();
        for (const int code : {key::escape, key::f1}) { // the first may have left a prompt
            if (editorState.subview != 0) key(code);
        }
    }
    void actAtRandom() {
        constexpr int keys[] = {46, 36, 190}; // Delete, Home, full stop
        answerAtRandom();
        if (const int kind = below(9); kind < 3) {
            dragAtRandom();
        } else if (kind == 3) {
            wheel(300, 200, below(3) - 1);
        } else if (kind == 4) {
            key(keys[below(3)]);
        } else if (kind == 5) {
            command(fileCommands[below(5)]);
        } else {
            command(commands[commandsDone++ % commands.size()]);
            if (editorState.subview != 0) useListAtRandom();
        }
        shown.files.clear();
        shown.choices.clear();
        shown.dialogAnswers.clear();
        shown.dialogResults.clear();
        shown.escapeAfter = -1;
        shown.log.clear();
    }
    /// Enters into the states what became of their marks of altered meshes by the last action.
    static void followMarks(std::vector<Everything>& states, const std::string& wholeFileBefore) {
        const bool overwritten = !wholeFileBefore.empty() && workbench.wholeFile.path.empty();
        const bool written = workbench.wholeMeshWritten && OB->changed == 0;
        if (!overwritten && !written) return;
        const std::string saved = everything().saved;
        for (Everything& state : states) {
            state.altered = true;
            if (written && state.saved == saved) state.altered.reset();
        }
    }
    /// The present state is this one; of the box, which goes with the view, see sameBox.
    static void expectIs(const Everything& state, const char* when) {
        const Everything now = everything();
        ASSERT_TRUE(now.content == state.content) << when;
        ASSERT_TRUE(now.scratch == state.scratch) << when;
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
    std::vector<int> commands = commandsToTry();
    std::size_t commandsDone = 0;
};

TEST_F(Undo, BringsBackToTheLastBitWhatAnyChainOfCommandsAndDragsDid) {
    for (int round = 0; round < 150; ++round) {
        newMesh();
        std::vector<Everything> states{everything()};
        for (int i = 0; i < 40; ++i) {
            const std::string label = undoLabel(), wholeFile = workbench.wholeFile.path;
            inList.reset();
            actAtRandom();
            if (inList && inList->content == states.back().content) {
                states.back().altered = inList->altered; // the name stays
            } else if (inList) {
                undo();
                if (everything().content == inList->content) states.push_back(*inList);
                redo();
            }
            followMarks(states, wholeFile);
            SCOPED_TRACE(std::to_string(round) + ", " + std::to_string(i) + ": " + undoLabel());
            Everything now = everything();
            if (now.content == states.back().content && sameBox(states.back(), now)) {
                states.back() = now; // no step
                ASSERT_TRUE(inList || undoLabel() == label);
                continue;
            }
            undo();
            ASSERT_NO_FATAL_FAILURE(expectIs(states.back(), "undone"));
            ASSERT_TRUE(!sameView(view, states.back().view)
                        || sameBox(states.back(), everything()));
            redo();
            ASSERT_NO_FATAL_FAILURE(expectIs(now, "redone"));
            ASSERT_TRUE(sameView(view, now.view) && sameBox(now, everything()));
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
        ASSERT_TRUE(OB->curvertex < OB->np && !pointDragRuns());
    }
}

TEST_F(Undo, TheMenuSaysWhatAndANewChangeCutsWhatCouldBeRedone) {
    cubeIn(351);
    startHistory();
    EXPECT_EQ(run(undoCommand), Log{"beep"});
    EXPECT_EQ(run(redoCommand), Log{"beep"});
    drag(300, 200, 40, 0, button::left);
    command(291);
    EXPECT_EQ(labels(), (Log{"&undo unselect all faces", "[&redo]"}));
    undo();
    EXPECT_EQ(labels(), (Log{"&undo move objects", "&redo unselect all faces"}));
    undo();
    EXPECT_EQ(labels(), (Log{"[&undo]", "&redo move objects"}));
    command(260); // tells something
    wheel(300, 200, 1);
    EXPECT_EQ(labels(), (Log{"[&undo]", "&redo move objects"}));
    command(2003);
    EXPECT_EQ(labels(), (Log{"&undo fit the box to the selected faces", "[&redo]"}));
    down(key::ctrl);
    down('1');
    click({100, 100});
    EXPECT_EQ(labels()[0], "&undo settable points");
}

TEST_F(Undo, ADragIsOneStepHoweverItEndsAndIsLeftAloneWhileItRuns) {
    cubeIn(351);
    startHistory();
    const std::string before = dump();
    for (const int x : {300, 340}) mouse(x, 200, button::left);
    EXPECT_EQ(run(undoCommand), Log());
    mouse(350, 200, button::left);
    const std::string dragged = dump();
    command(291); // ends it
    for (const std::string& state : {dragged, before}) {
        EXPECT_NE(dump(), state);
        undo();
        EXPECT_EQ(dump(), state);
    }
    EXPECT_EQ(labels()[0], "[&undo]");
}

TEST_F(Undo, AListSessionAndEachRenameAndMoveInItAreSteps) {
    constexpr int groupList = 264;
    const Spot first{20, 8}, second{20, 24}; // cells
    cubeIn(358);
    OB->addGroup("other");
    startHistory();
    std::vector<std::string> states{dump()};
    const auto expectStep = [&](const char* label) {
        EXPECT_EQ(undoLabel(), label);
        EXPECT_NE(dump(), states.back());
        states.push_back(dump());
    };
    command(groupList);
    EXPECT_EQ(labels(), Log()); // not in lists
    shown.dialogAnswers = {{"new name"}};
    mouse(second, button::right);
    mouse(second, 0);
    expectStep("rename");
    down(key::ctrl);
    drag(first, second);
    expectStep("reorder");
    click(first);
    down(key::escape);
    expectStep("groups list");
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        undo();
        EXPECT_EQ(dump(), states[i]);
    }
    EXPECT_EQ(undoLabel(), "");
}

TEST_F(Undo, AFailedAppendIsUndoneWithViewAndFileName) {
    cubeIn(358);
    workbench.fileName = "before.obj";
    wheel(100, 100, 2);
    startHistory();
    const Everything before = everything();
    shown.files = {folder.write("bad.obj", "v 0 0 0\nf 1 2 3\n")};
    command(296);
    EXPECT_EQ(OB->nf, 0);
    EXPECT_FALSE(sameView(view, before.view));
    undo();
    expectIs(before, "undone");
    EXPECT_TRUE(sameView(view, before.view) && sameBox(everything(), before));
    EXPECT_EQ(shown.windowTitle, "polyfab [before.obj] ");
    redo();
    EXPECT_EQ(OB->nf, 0);
    EXPECT_NE(workbench.fileName, "before.obj");
}

TEST_F(Undo, WhatAReadLeftTakesNoMemoryUntilItIsChangedAndComesBackThen) {
    const std::string file = folder.write("two.obj", "v 0 0 0\nv 3 0 0\nv 0 2 0\nv 3 2 0\n"
                                                     "g a\nf 1 2 3\ng b\nf 2 4 3\n");
    const std::pair<int, void (*)()> changes[] = {
        {358, [] { command(397); }},
        {351, [] { drag(200, 200, 40, 0, button::left); }},
        {348,
         [] {
             workbench.currentEdgeFace = 0, workbench.currentEdgeCorner = 1;
             key(46);
         }},
        {358,
         [] {
             command(264);
             click({20, 8});
             key(key::escape);
         }},
    };
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

TEST_F(Undo, TheBoxComesBackAroundWhatItWasAroundHoweverTheViewHasMoved) {
    cubeIn(358);
    command(2003);
    command(292);
    startHistory();
    select({0});
    command(2003);
    wheel(300, 100, 3);
    shown.size = {800, 600};
    send(EventKind::resize);
    EXPECT_EQ(view.client.width, 800);
    undo();
    const Box undone = box;
    fitBox(*OB, false);
    expectNear(undone.left, box.left, 1e-9);
    expectNear(undone.right, box.right, 1e-9);
}

TEST_F(Undo, TheMeshIsAlteredUnlessItIsTheOneThatWasWrittenLast) {
    struct Row {
        const char* script; ///< each step a letter, see below
        bool altered;
    };
    constexpr Row rows[] = {
        {"a", true},      {"au", false},    {"aur", true},     {"aw", false},    {"awu", true},
        {"awur", false},  {"aws", false},   {"awsu", false},   {"awsuu", true},  {"asw", false},
        {"aswu", false},  {"aswuu", true},  {"aswua", true},   {"awa", true},    {"awau", false},
        {"awaw", false},  {"awawu", true},  {"awawuu", true},  {"s", false},     {"su", false},
        {"saww", false},  {"sauu", false},  {"awuar", true},   {"awuaw", false}, {"aawu", true},
        {"aawuur", true}, {"awuaur", true}, {"awaurw", false}, {"n", true},      {"awn", true},
        {"awanur", true}, {"e", false},     {"ae", true},      {"aeu", true},    {"aeuu", false},
        {"awe", false},   {"awae", true},   {"awaeuu", false}, {"f", false},     {"af", true},
        {"awp", true},    {"awpu", true},   {"awpw", false},   {"awl", true},    {"awd", false},
        {"p", false}};
    folder.write("empty.obj", "");
    std::filesystem::create_symlink("a.obj", folder.path("link.obj"));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.script);
        cubeIn(358);
        OB->addGroup("g");
        OB->changed = 0;
        startHistory();
        for (const char step : std::string_view(row.script)) {
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
        EXPECT_EQ(OB->changed, row.altered);
    }
}

TEST_F(Undo, TheOldestStepsAreDroppedButNeverTheNewest) {
    cubeIn(358);
    setUndoMemory(1);
    startHistory();
    command(397);
    const Everything second = everything();
    command(291);
    undo();
    expectIs(second, "undone");
    EXPECT_EQ(labels()[0], "[&undo]");
    setUndoMemory(0);
    command(397);
    command(290);
    EXPECT_EQ(run(undoCommand), Log{"beep"});
    EXPECT_EQ(run(redoCommand), Log{"beep"});
    setUndoMemory(defaultUndoMemory());
    command(291); // from here on
    command(290);
    EXPECT_EQ(labels()[0], "&undo select all faces");
}

} // namespace
} // namespace polyfab::test
