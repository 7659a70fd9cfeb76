// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "mesh/stale.h"
#include "mesh/store.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"

#include <nlohmann/json.hpp>

namespace polyfab::test {
namespace {

using Json = nlohmann::json;

class Window : public WindowEvents {
  protected:
    static Json state() { return Json::parse(editorProgram().stateJson()); }
};

TEST_F(Window, WhatIsNotBuiltIsGreyedAndDoesNothing) {
    addCube();
    const std::string before = dump();
    std::set<std::string> titles{listMenu}; // which stands in the bar of its sub-view
    for (const Menu& menu : shown.bar) {
        EXPECT_TRUE(titles.insert(menu.title).second); // a menu's commands stand together
        for (const MenuItem& item : menu.items) {
            const bool built = findCommand(item.id)->handler != nullptr;
            // Undo and redo grey while there is nothing for them to do.
            EXPECT_TRUE(item.enabled == built || menu.title == "&edit");
            if (!built) command(item.id);
        }
    }
    command(104); // the accelerator's command, which the window ignores
    EXPECT_EQ(dump(), before);
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(Window, InfoCountsWhatIsThereAndSelectingTakesLiveFaces) {
    cubeIn(358);
    OB->faces[2].q = nullptr;
    OB->faces[2].selected = 0;
    shown.paintRequests = 0;
    command(290);
    EXPECT_EQ(selected(), (Numbers{0, 1, 3, 4, 5}));
    OB->faces[2].selected = 1;
    command(291);
    EXPECT_EQ(selected(), Numbers{2});
    EXPECT_TRUE(OB->changed == 0 && shown.paintRequests == 2);
    select({5});
    const std::string counts = "title|has 8 points, 6 faces, 24 face-sides; 4 points selected";
    EXPECT_EQ(run(260), Log{counts});
    OB->curface = 1;
    OB->curvertex = 7;
    EXPECT_EQ(run(260), Log{counts + ", current face 2, in default, current vertex 8"});
    EXPECT_EQ(state()["selectedFaces"], 1);
}

TEST_F(Window, ClosingAsksOnlyWhenThereIsSomethingToLose) {
    const auto close = [&] { return showsAt(EventKind::close); };
    const std::string question =
        "question|you have not saved this object since you altered it last|do you want to exit?";
    EXPECT_EQ(close(), Log{"destroyed"});
    OB->changed = 1;
    EXPECT_EQ(close(), Log{question});
    shown.choices = {Choice::yes};
    EXPECT_EQ(close(), (Log{question, "destroyed"}));
    workbench.busy = true;
    EXPECT_EQ(close(), (Log{"beep", "title|Whoa there, I got a file open!!"}));
}

TEST_F(Window, NothingClosesItWhileABoxIsOpen) {
    cubeIn(358);
    struct : FakePlatform {
        Choice question(const std::string&, const std::string&, Buttons) override {
            log.push_back("asked");
            send(EventKind::close); // as at the end of the session
            return Choice::no;
        }
    } closing;
    command(299);
    EXPECT_EQ(closing.log,
              (Log{"asked", "beep", "title|Whoa there, I am in the middle of something!!"}));
    OB->changed = 1;
    closing.log.clear();
    send(EventKind::close); // and once more in its own question
    EXPECT_EQ(closing.log.size(), 3U);
    OB->changed = 0;
    send(EventKind::close); // now there is none
    EXPECT_EQ(closing.log.back(), "destroyed");
}

TEST_F(Window, ItsEndReleasesTheMeshUnlessThatIsFaulty) {
    for (const bool faulty : {true, false}) {
        addCube();
        command(278); // an open list is no obstacle
        if (faulty) OB->faces[0].mat = 5;
        std::vector<void*> left{OB->groups, OB->points, OB->corners,  OB->faces,
                                OB->tmas,   OB->parts,  OB->materials};
        if (!faulty) left.resize(1); // a clear leaves the groups
        const int blocks = storeBlocks();
        EXPECT_EQ(showsAt(EventKind::destroy).size(), faulty ? 1U : 0U);
        EXPECT_EQ(blocks - storeBlocks(), faulty ? 1 : 7);
        for (void*& array : left) farfree(&array);
        resetEditorState();
        createMesh();
    }
}

TEST_F(Window, KeysGoDownAndUpAndAreClearedWithTheFocus) {
    for (const int code : {int{'A'}, key::shift, 999, -1}) down(code); // two are no virtual keys
    EXPECT_EQ(state()["keys"], (Json{key::shift, 'A'}));
    for (const EventKind kind : {EventKind::deactivate, EventKind::menuOpening}) {
        down(key::ctrl);
        send(kind);
        EXPECT_TRUE(state()["keys"].empty());
    }
    shown.log.clear();
    for (const int code : {int{'B'}, int{'C'}, int{'V'}, int{'I'}, 256 + 'C'}) up(code);
    EXPECT_EQ(shown.log, Log(3, "title|polyfab [] "));
}

TEST_F(Window, TheStateTellsButtonsNowAndBeforeAndTheMouse) {
    using namespace button;
    const std::tuple<unsigned, int, Json> rows[] = {{left, 1, {1, 10, 0}},
                                                    {right, 6, {2, 20, 0}},
                                                    {left | right, 11, {2, 30, 3}},
                                                    {0, 12, {2, 40, 4}},
                                                    {0, 0, {5, 50, 4}}};
    int i = 0;
    for (const auto& [buttons, history, at] : rows) {
        ++i;
        mouse(i, 10 * i, buttons);
        EXPECT_EQ(state()["history"], history);
        EXPECT_EQ(state()["mouse"], at);
    }
}

TEST_F(Window, DropsOfOneFileAreReadAndOfSeveralRefused) {
    const TempFolder folder;
    const std::string path = folder.write("t.obj", triangle);
    EXPECT_EQ(showsAt({.kind = EventKind::drop, .paths = {path, path}}),
              Log{"message!|drag-and-drop|one file at a time please"});
    drop(path);
    EXPECT_EQ(shown.windowTitle, "polyfab [" + path + "] ");
    EXPECT_EQ(state()["nf"], 1);
}

TEST_F(Window, TheDumpHoldsTheWholeMesh) {
    for (const int x : {0, 7}) OB->addPoint(x, 1, -2, false);
    for (int i = 0; i < 2; ++i) addFace({0, 1});
    OB->faces[0].q = nullptr;
    OB->addTexCoord(0.25, 0.5);
    OB->addNormal(0, 1, 0);
    OB->faces[1].q[0].d = OB->normals;
    OB->faces[1].q[1].t = OB->texcoords;
    OB->groups[0].name[0] = '\xff'; // not UTF-8
    EXPECT_EQ(Json::parse(dump()), Json::parse(R"({"event": "dump", "mtllib": "",
        "points": [[0, 1, -2], [7, 1, -2]], "texcoords": [[0.25, 0.5]], "normals": [[0, 1, 0]],
        "groups": [{"name": "\uFFFDefault", "selected": 1}],
        "materials": [{"name": "default", "color": 8421504, "selected": 1}],
        "tmas": [1], "parts": [1],
        "faces": [null, {"g": 0, "mat": 0, "tma": 0, "prt": 0, "selected": 1,
                         "corners": [[0, -1, 0, 2], [1, 0, -1, 2]]}]})"));
}

TEST_F(Window, EachDisplaySwitchHasItsOwnOptionAndCheckMark) {
    const std::set<int> before = checks();
    EXPECT_EQ(before, (std::set{271, 297, 1029, 1030}));
    const auto options = reinterpret_cast<const bool*>(&displayOptions);
    const std::vector<bool> usual(options, options + sizeof displayOptions);
    std::set<std::size_t> thrown;
    for (const Command& row : commandTable()) {
        if (std::string(row.menu) != "&display" || row.checked == nullptr) continue;
        stale = {false, false, false};
        const int requests = shown.paintRequests;
        command(row.id);
        EXPECT_GT(shown.paintRequests, requests);
        EXPECT_EQ(stale.edges, row.id == 354); // only hiding changes which edges there are
        for (std::size_t i = 0; i < usual.size(); ++i) {
            if (options[i] != usual[i]) thrown.insert(i);
        }
        Numbers changed;
        std::ranges::set_symmetric_difference(before, checks(), std::back_inserter(changed));
        EXPECT_EQ(changed, Numbers{row.id});
        command(row.id);
        EXPECT_EQ(checks(), before) << row.id;
    }
    EXPECT_EQ(thrown.size(), usual.size());
    for (const int id : {298, 271, 298}) command(id); // of the rotate modes; the first no switch
    EXPECT_EQ(checks(), (std::set{298, 1029, 1030}));
}

} // namespace
} // namespace polyfab::test
