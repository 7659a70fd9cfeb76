// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/window.h"

#include "display/view.h"
#include "editor/commands.h"
#include "editor/menus.h"
#include "editor/state.h"
#include "mesh/store.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/temp_folder.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

class Window : public test::MeshTest {
  protected:
    Window() {
        resetEditorState();
        handleEvent({.kind = EventKind::create});
        shown.log.clear();
    }
    ~Window() override { resetEditorState(); }

    void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }
    void key(EventKind kind, int code) { handleEvent({.kind = kind, .key = code}); }
    void mouse(int x, int y, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
    }
    nlohmann::json state() { return nlohmann::json::parse(editorProgram().stateJson()); }
    nlohmann::json dump() { return nlohmann::json::parse(editorProgram().dumpJson()); }
};

TEST_F(Window, EveryLabelAndMenuIsToldApart) {
    std::set<std::string> labels;
    std::map<std::string, int> runs; // a menu's commands stand together
    const char* last = "";
    for (const Command& command : commandTable()) {
        EXPECT_TRUE(labels.insert(command.label).second) << command.label;
        if (std::string(last) != command.menu) ++runs[command.menu];
        last = command.menu;
    }
    for (const auto& [menu, count] : runs) EXPECT_EQ(count, 1) << menu;
    EXPECT_EQ(shown.bar.size() + 1, runs.size()); // the heading of the lists stands in none
}

TEST_F(Window, WhatIsNotBuiltIsGreyedAndDoesNothing) {
    test::addCube();
    const std::string before = editorProgram().dumpJson();
    for (const Menu& menu : shown.bar) {
        for (const MenuItem& item : menu.items) {
            EXPECT_EQ(item.enabled, findCommand(item.id)->handler != nullptr);
            if (!item.enabled) command(item.id);
        }
    }
    command(104); // the accelerator's command, which the window ignores
    EXPECT_EQ(editorProgram().dumpJson(), before);
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(Window, InfoNamesTheCurrentFaceAndVertex) {
    test::addCube();
    OB->faces[0].selected = 0;
    OB->faces[1].selected = 0;
    for (int f = 2; f < 5; ++f) OB->faces[f].selected = 0;
    command(260);
    EXPECT_EQ(shown.windowTitle, "has 8 points, 6 faces, 24 face-sides; 4 points selected");
    OB->curface = 1;
    OB->curvertex = 7;
    command(260);
    EXPECT_EQ(shown.windowTitle, "has 8 points, 6 faces, 24 face-sides; 4 points selected, "
                                 "current face 2, in default, current vertex 8");
}

TEST_F(Window, SelectingChangesLiveFacesAndThePictureOnly) {
    test::addCube();
    OB->faces[2].q = nullptr;
    OB->faces[2].selected = 7;
    OB->changed = 0;
    shown.paintRequests = 0;
    command(291);
    EXPECT_EQ(state()["selectedFaces"], 0);
    command(290);
    EXPECT_EQ(state()["selectedFaces"], 5);
    EXPECT_EQ(OB->faces[2].selected, 7);
    EXPECT_EQ(OB->changed, 0);
    EXPECT_EQ(shown.paintRequests, 2);
}

TEST_F(Window, ClosingAsksOnlyWhenThereIsSomethingToLose) {
    const auto close = [&] {
        shown.log.clear();
        handleEvent({.kind = EventKind::close});
        return shown.log;
    };
    const std::string question =
        "question|you have not saved this object since you altered it last|do you want to exit?";
    EXPECT_EQ(close(), Log{"destroyed"});
    OB->changed = 1;
    EXPECT_EQ(close(), Log{question});
    shown.choices = {Choice::yes};
    EXPECT_EQ(close(), (Log{question, "destroyed"}));
    editorState.busy = true;
    EXPECT_EQ(close(), (Log{"beep", "title|Whoa there, I got a file open!!"}));
}

TEST_F(Window, DestroyingAFaultyMeshLeavesItsArraysAlone) {
    test::addCube();
    const int blocks = storeBlocks();
    Face* faces = OB->faces;
    OB->faces[0].mat = 5;
    void* arrays[] = {OB->points, OB->corners, OB->materials, OB->groups, OB->tmas, OB->parts};
    handleEvent({.kind = EventKind::destroy});
    EXPECT_EQ(shown.log, Log{"message!|bad image, so I am not free()'ing it|fac.mat = 5 out of "
                             "range, should be 0 to 0"});
    EXPECT_EQ(storeBlocks(), blocks - 1); // the record alone
    EXPECT_EQ(faces[0].mat, 5);
    farfree(&faces);
    for (void*& array : arrays) farfree(&array);
    createMesh();
}

TEST_F(Window, KeysGoDownAndUpAndAreClearedWithTheFocus) {
    key(EventKind::keyDown, 'A');
    key(EventKind::keyDown, key::shift);
    key(EventKind::keyDown, 999); // no virtual key: ignored
    EXPECT_EQ(state()["keys"], (nlohmann::json{key::shift, 'A'}));
    key(EventKind::keyUp, 'A');
    EXPECT_EQ(state()["keys"], nlohmann::json{key::shift});
    for (const EventKind kind : {EventKind::deactivate, EventKind::menuOpening}) {
        key(EventKind::keyDown, key::ctrl);
        handleEvent({.kind = kind});
        EXPECT_TRUE(state()["keys"].empty());
    }
    shown.log.clear();
    for (const int code : std::vector<int>{'B', 'C', 'V', 'I', 256 + 'C'})
        key(EventKind::keyUp, code);
    EXPECT_EQ(shown.log, Log(3, "title|polyfab [] "));
}

TEST_F(Window, MousePositionAndHistory) {
    struct Row {
        int x, y;
        unsigned buttons;
        int history;
        std::array<double, 3> position;
    };
    using namespace button;
    const Row rows[] = {{5, 6, 0, 0, {5, 6, 0}},           {7, 8, left, 1, {7, 8, 0}},
                        {9, 10, left, 5, {9, 10, 0}},      {11, 12, right, 6, {11, 12, 0}},
                        {13, 14, right, 10, {11, 14, 13}}, {15, 16, 0, 8, {11, 16, 15}},
                        {17, 18, 0, 0, {17, 18, 15}},      {1, 2, left | right, 3, {1, 2, 15}}};
    for (const Row& row : rows) {
        mouse(row.x, row.y, row.buttons);
        EXPECT_EQ(state()["history"], row.history);
        EXPECT_EQ(state()["mouse"], nlohmann::json(row.position));
    }
}

TEST_F(Window, DropsOfOneFileAreReadAndOfSeveralRefused) {
    const test::TempFolder folder;
    const std::string path = folder.write("t.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    handleEvent({.kind = EventKind::drop, .paths = {path, path}});
    EXPECT_EQ(shown.log, Log{"message!|drag-and-drop|one file at a time please"});
    handleEvent({.kind = EventKind::drop, .paths = {path}});
    EXPECT_EQ(shown.windowTitle, "polyfab [" + path + "] ");
    EXPECT_EQ(state()["nf"], 1);
}

TEST_F(Window, PaintShowsTheMeshAndNothingNewCostsNothing) {
    test::addCube();
    stale.edges = true;
    fitView(*OB);
    handleEvent({.kind = EventKind::paint});
    EXPECT_EQ(shown.picture.width, 1024);
    EXPECT_EQ(shown.picture.height, 512);
    const std::set<std::uint32_t> colors(shown.picture.pixels.begin(), shown.picture.pixels.end());
    EXPECT_GE(colors.size(), 3U); // background, the line between the panes, edges
}

TEST_F(Window, TheDumpHoldsTheWholeMesh) {
    test::addCube();
    const int t = OB->addTexCoord(0.25, 0.5);
    OB->faces[1].q[2].t = &OB->texcoords[t];
    OB->faces[0].q = nullptr;
    OB->groups[0].name[0] = '\xff'; // not UTF-8
    const nlohmann::json mesh = dump();
    EXPECT_EQ(mesh["points"][3], (nlohmann::json{1, 1, -1}));
    EXPECT_EQ(mesh["texcoords"], (nlohmann::json::array({{0.25, 0.5}})));
    EXPECT_EQ(mesh["groups"][0]["name"], "\uFFFDefault");
    EXPECT_TRUE(mesh["faces"][0].is_null());
    EXPECT_EQ(mesh["faces"][1]["corners"][2], (nlohmann::json{7, 0, -1, 2}));
    EXPECT_EQ(mesh["materials"][0]["color"], 0x808080);
    EXPECT_EQ(mesh["parts"], nlohmann::json::array({1}));
}

} // namespace
} // namespace polyfab
