// SPDX-License-Identifier: GPL-3.0-or-later
// The name lists as the window drives them. The client area is 1024x512: cells of 256x16 pixels.
#include "editor/name_list.h"

#include "display/pane_images.h"
#include "display/view.h"
#include "editor/modes.h"
#include "editor/report.h"
#include "editor/state.h"
#include "editor/subview.h"
#include "editor/window.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;
constexpr int groupsList = 264, materialsList = 328, partsList = 278, areasList = 276;

class NameList : public test::MeshTest {
  protected:
    NameList() {
        resetEditorState();
        handleEvent({.kind = EventKind::create});
    }
    ~NameList() override {
        resetEditorState();
        view.client = {};
        resetView();
    }

    /// Entries 0 to 5, all unpicked, in each of the four tables; face f of a cube is in entry f of
    /// all of them, and unselected.
    void addEntries() {
        test::addCube();
        for (int i = 1; i < 6; ++i) {
            OB->addGroup("g" + std::to_string(i));
            OB->addMaterial(0x123456, "m" + std::to_string(i));
            OB->addPart();
            OB->addTextureMapArea();
        }
        for (std::int16_t i = 0; i < 6; ++i) {
            OB->groups[i].selected = 0;
            OB->materials[i].selected = OB->parts[i].selected = OB->tmas[i].selected = 0;
            Face& face = OB->faces[i];
            face.g = face.mat = face.prt = face.tma = i;
            face.selected = 0;
        }
        OB->changed = 0;
    }
    void addGroups(int count) {
        for (int i = 0; i < count; ++i) OB->addGroup("g" + std::to_string(i));
        for (int i = 0; i < count; ++i) OB->groups[i].selected = 0;
        OB->changed = 0;
    }

    void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }
    void down(int code) { handleEvent({.kind = EventKind::keyDown, .key = code}); }
    void up(int code) { handleEvent({.kind = EventKind::keyUp, .key = code}); }
    void press(int code) {
        down(code);
        up(code);
    }
    void mouse(int x, int y, unsigned buttons = 0) {
        handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
    }
    void mouseOn(int entry, unsigned buttons = 0) {
        mouse(entry / 32 * 256 + 20, entry % 32 * 16 + 8, buttons);
    }
    void wheel(double steps, int x = 20, int y = 8) {
        handleEvent({.kind = EventKind::wheel, .x = x, .y = y, .steps = steps});
    }
    const std::vector<test::FakePlatform::Text>& paint() {
        shown.texts.clear();
        handleEvent({.kind = EventKind::paint});
        return shown.texts;
    }
    std::string textAt(int x, int y) {
        for (const auto& text : shown.texts) {
            if (text.x == x && text.y == y) return text.text;
        }
        return "";
    }
    /// One digit per entry or face: whether it is picked (selected).
    std::string groupPicks() {
        std::string picks;
        for (int i = 0; i < OB->ng; ++i) picks += OB->groups[i].selected ? '1' : '0';
        return picks;
    }
    std::string selectedFaces() {
        std::string selected;
        for (int i = 0; i < OB->nf; ++i) selected += OB->faces[i].selected ? '1' : '0';
        return selected;
    }
    std::string groupNames() {
        std::string names;
        for (int i = 0; i < OB->ng; ++i) names += OB->groups[i].name + std::string(" ");
        return names;
    }
    bool open() { return editorState.subview != 0; }
};

TEST_F(NameList, ShowsEveryEntryInItsCell) {
    addGroups(40);
    test::addCube();
    for (int f = 0; f < 6; ++f) OB->faces[f].g = f < 4 ? 33 : 1;
    OB->faces[0].q = nullptr; // deleted, in 33
    OB->faces[4].selected = 0;
    OB->faces[5].g = 40; // out of range
    OB->groups[33].texture = 7;
    command(groupsList);
    OB->curgroup = 1;
    paint();
    EXPECT_EQ(shown.texts.size(), 41U); // and the hint
    EXPECT_EQ(textAt(5, 1), "g0 (0f)");
    EXPECT_EQ(textAt(5, 17), "g1 (1f)");
    EXPECT_EQ(textAt(5, 31 * 16 + 1), "g31 (0f)");
    EXPECT_EQ(textAt(261, 17), "g33 (3f)");
    EXPECT_EQ(textAt(773, 31 * 16 + 1), "(press esc or click a name)");
    for (const auto& text : shown.texts) {
        EXPECT_EQ(text.color, text.y == 17 && text.x == 5 ? 0xFFC80000 : 0xFF000000);
    }
    press('S');
    command(385);
    paint();
    EXPECT_EQ(textAt(5, 17), "0:g1 (0f sel)");
    EXPECT_EQ(textAt(261, 17), "7:g33 (3f sel)");
    const auto checks = nlohmann::json::parse(stateJson())["checks"];
    EXPECT_NE(std::find(checks.begin(), checks.end(), 385), checks.end());
    // Both switches outlive the list, and numbers are no business of the materials.
    press(key::escape);
    command(materialsList);
    paint();
    EXPECT_EQ(textAt(5, 1), "default (0f sel)");
    press('S');
    command(385); // not in the menu of this list
    EXPECT_TRUE(!nameList.selectedOnly && nameList.textureNumbers);
}

TEST_F(NameList, ThePicturesOfEntriesThatHaveNoNamesShowTheirNumbers) {
    addEntries();
    OB->faces[5].prt = OB->faces[5].tma = 2;
    for (const int list : {partsList, areasList}) {
        command(list);
        paint();
        EXPECT_EQ(textAt(5, 1), "0 (1f)");
        EXPECT_EQ(textAt(5, 33), "2 (2f)");
        EXPECT_EQ(textAt(5, 81), "5 (0f)");
        press(key::escape);
    }
}

TEST_F(NameList, PickedEntriesAreMarkedByTheRightPanesPicture) {
    addEntries();
    OB->groups[2].selected = 1;
    command(groupsList);
    paint();
    const auto pixel = [&](int x, int y) {
        return shown.picture.pixels[static_cast<std::size_t>(y * 1024 + x)];
    };
    ASSERT_EQ(shown.picture.pixels.size(), 1024U * 512);
    const std::uint32_t mark = paneImages.right.pixels[0];
    EXPECT_EQ(std::count(shown.picture.pixels.begin(), shown.picture.pixels.end(), mark), 16);
    EXPECT_EQ(pixel(1, 2 * 16 + 2), mark);
    EXPECT_EQ(pixel(4, 2 * 16 + 5), mark);
}

TEST_F(NameList, ClicksPickAndClose) {
    struct Row {
        std::vector<int> held;
        unsigned buttons;
        int entry;
        bool open;
        const char* picks; ///< from 110000
    };
    const Row rows[] = {
        {{}, button::left, 4, false, "000010"},
        {{}, button::left, 1, false, "010000"},
        {{key::alt}, button::left, 4, true, "000010"},
        {{key::ctrl}, button::left, 4, true, "110010"},
        {{key::ctrl}, button::left, 1, true, "100000"},
        {{key::ctrl, key::alt}, button::left, 0, true, "010000"},
        {{}, button::left, 6, true, "110000"}, // an empty cell
        {{}, button::left | button::right, 4, true, "110000"},
        {{}, 0, 4, true, "110000"},
    };
    for (const Row& row : rows) {
        test::emptyMesh();
        addEntries();
        OB->groups[0].selected = OB->groups[1].selected = 1;
        command(groupsList);
        for (const int code : row.held) down(code);
        mouseOn(row.entry, row.buttons);
        EXPECT_EQ(open(), row.open);
        EXPECT_EQ(groupPicks(), row.picks);
        const int pointed = row.entry < 6 ? row.entry : -1;
        EXPECT_EQ(OB->curgroup, pointed);
        EXPECT_EQ(nameList.pressed, row.buttons != 0 ? pointed : -1);
        for (const int code : row.held) up(code);
        mouseOn(row.entry);
        if (open()) press(key::escape);
        EXPECT_EQ(selectedFaces(), row.picks);
        EXPECT_EQ(OB->changed, 0);
    }
}

TEST_F(NameList, EachListSelectsByItsOwnField) {
    addEntries();
    for (std::int16_t f = 0; f < 6; ++f) {
        OB->faces[f].mat = static_cast<std::int16_t>((f + 1) % 6);
        OB->faces[f].prt = static_cast<std::int16_t>((f + 2) % 6);
        OB->faces[f].tma = static_cast<std::int16_t>((f + 3) % 6);
    }
    OB->faces[0].q = nullptr;
    OB->faces[0].selected = 1; // deleted: nobody's business
    OB->faces[1].g = 77;       // in no group
    OB->faces[1].selected = 1;
    const int lists[] = {groupsList, materialsList, partsList, areasList};
    std::int16_t Mesh::*const currents[] = {&Mesh::curgroup, &Mesh::curmat, &Mesh::curprt,
                                            &Mesh::curtma};
    const char* const words[] = {"groups", "materials", "parts", "texture map areas"};
    for (int i = 0; i < 4; ++i) {
        enterMode(378); // whose name is back afterwards
        command(lists[i]);
        EXPECT_EQ(shown.windowTitle, std::string("polyfab [] ") + words[i]);
        mouseOn(5);
        mouseOn(5, button::left);
        EXPECT_FALSE(open());
        EXPECT_EQ(OB->*currents[i], 5);
        std::string expected = "100000";
        expected[static_cast<std::size_t>(5 - i)] = '1';
        EXPECT_EQ(selectedFaces(), expected) << words[i];
        EXPECT_EQ(shown.windowTitle, "polyfab [] selecting groups by clicking the mesh");
        mouse(0, 0);
    }
}

TEST_F(NameList, PointsByWholeCellsToTheLetter) {
    struct Row {
        Size client;
        int x, y, entry; ///< of 70
    };
    const Row rows[] = {
        {{1024, 512}, 0, 0, 0},     {{1024, 512}, 255, 15, 0},
        {{1024, 512}, 256, 16, 33}, {{1024, 512}, 512, 95, 69},
        {{1024, 512}, 512, 96, -1}, {{1024, 512}, -1, 5, -1},
        {{1024, 512}, 5, -1, -1},   {{1024, 512}, 5, 512, 32},
        {{1027, 543}, 1, 542, 33},  {{3, 512}, 0, 0, -1},
        {{1024, 31}, 0, 0, -1},     {{0, 0}, 0, 0, -1},
        {{4, 32}, 2, 4, 68},        {{4, 32}, 2147483647, 2147483647, -1},
    };
    addGroups(70);
    command(groupsList);
    for (const Row& row : rows) {
        shown.size = row.client;
        mouse(row.x, row.y);
        EXPECT_EQ(OB->curgroup, row.entry) << row.client.width << ": " << row.x << "," << row.y;
        paint();
        EXPECT_EQ(shown.picture.width, row.client.width);
        EXPECT_EQ(shown.picture.pixels.size(),
                  static_cast<std::size_t>(row.client.width * row.client.height));
    }
}

TEST_F(NameList, RightClicksRename) {
    const std::string longName(200, 'x');
    struct Row {
        int list;
        std::vector<std::string> answer; ///< none: cancelled
        std::string name;                ///< of entry 3 afterwards
    };
    const Row rows[] = {
        {groupsList, {"roof "}, "roof"},
        {groupsList, {""}, ""},
        {groupsList, {}, "g3"},
        {groupsList, {longName}, longName.substr(0, 63)},
        {materialsList, {"copper\t"}, "copper"},
        {materialsList, {}, "m3"},
    };
    for (const Row& row : rows) {
        test::emptyMesh();
        addEntries();
        command(row.list);
        shown.log.clear();
        if (!row.answer.empty()) shown.dialogAnswers = {row.answer};
        mouseOn(3, button::right);
        mouseOn(3);
        const bool groups = row.list == groupsList;
        const std::string asked = std::string("dialog|ASKDB|new name?=") + (groups ? "g3" : "m3");
        EXPECT_EQ(std::count(shown.log.begin(), shown.log.end(), asked), 1);
        EXPECT_EQ(groups ? OB->groups[3].name : OB->materials[3].name, row.name);
        EXPECT_EQ(OB->changed, 1);
        EXPECT_TRUE(open());
        press(key::escape);
    }
    for (const int list : {partsList, areasList, groupsList}) {
        command(list);
        shown.log.clear();
        mouseOn(list == groupsList ? 9 : 3, button::right); // a number; an empty cell
        mouseOn(3);
        for (const std::string& line : shown.log) EXPECT_EQ(line.find("dialog"), line.npos);
        press(key::escape);
    }
}

TEST_F(NameList, DraggingMovesAGroup) {
    struct Row {
        int list, from, to;
        const char* names;
    };
    const Row rows[] = {
        {groupsList, 5, 2, "default g1 g5 g2 g3 g4 "},
        {groupsList, 1, 4, "default g2 g3 g4 g1 g5 "},
        {groupsList, 2, 2, "default g1 g2 g3 g4 g5 "},
        {groupsList, 2, 9, "default g1 g2 g3 g4 g5 "}, // to an empty cell
        {groupsList, 9, 2, "default g1 g2 g3 g4 g5 "},
        {materialsList, 5, 2, "default g1 g2 g3 g4 g5 "},
    };
    for (const Row& row : rows) {
        test::emptyMesh();
        addEntries();
        command(row.list);
        down(key::ctrl); // a plain click would close the list
        mouseOn(row.from, button::left);
        mouseOn(7, button::left);
        mouseOn(row.to, button::left);
        mouseOn(row.to);
        up(key::ctrl);
        EXPECT_EQ(groupNames(), row.names);
        EXPECT_STREQ(OB->materials[5].name, "m5");
        for (int f = 1; f < 6; ++f) {
            EXPECT_EQ(OB->groups[OB->faces[f].g].name, "g" + std::to_string(f));
        }
        EXPECT_EQ(OB->changed,
                  row.list == groupsList
                      && std::string(row.names).find("g1 g2 g3 g4 g5") == std::string::npos);
        press(key::escape);
    }
}

TEST_F(NameList, KeysActOncePerPress) {
    addEntries();
    command(groupsList);
    press('A');
    EXPECT_EQ(groupPicks(), "111111");
    press('C');
    EXPECT_EQ(groupPicks(), "000000");
    OB->groups[3].selected = 1;
    editorState.textureNumber = 6;
    press('T');
    EXPECT_EQ(OB->groups[3].texture, 6);
    EXPECT_EQ(OB->groups[2].texture, 0);
    down('S');
    down('S');
    EXPECT_TRUE(nameList.selectedOnly);
    handleEvent({.kind = EventKind::deactivate}); // its key-up goes elsewhere
    down('S');
    EXPECT_FALSE(nameList.selectedOnly);
    down('N');
    down('N');
    up('N');
    press('N');
    EXPECT_EQ(groupNames(), "default g1 g2 g3 g4 g5 new_group new_group ");
    press('Q');
    down(-1);
    down(999);
    EXPECT_TRUE(open());
}

TEST_F(NameList, OtherListsHaveFewerKeys) {
    addEntries();
    OB->groups[0].selected = 1;
    editorState.textureNumber = 6;
    for (const int list : {materialsList, partsList, areasList}) {
        command(list);
        press('N');
        press('T');
        press(key::escape);
    }
    EXPECT_EQ(OB->nmat, 7);
    EXPECT_STREQ(OB->materials[6].name, "new_material");
    EXPECT_EQ(OB->materials[6].color, 0xFFFFFFU);
    EXPECT_EQ(OB->ng, 6);
    EXPECT_EQ(OB->nprt, 6);
    EXPECT_EQ(OB->ntma, 6);
    EXPECT_EQ(OB->groups[0].texture, 0);
}

TEST_F(NameList, FourKeysCloseIt) {
    addEntries();
    for (const int code : {key::escape, key::f1, key::f2, key::f3}) {
        command(groupsList);
        EXPECT_TRUE(open());
        down(code);
        EXPECT_FALSE(open());
        EXPECT_EQ(nameList.closingKey, code);
        up(code);
        EXPECT_FALSE(keyIsDown(code));
    }
}

TEST_F(NameList, LongListsScrollByColumns) {
    addGroups(7 * 32 + 1); // 8 columns, the first of a full window is at most 4
    command(groupsList);
    const auto firstShown = [&] {
        paint();
        return textAt(5, 1);
    };
    EXPECT_EQ(paint().size(), 128U); // no hint
    press(key::pageDown);
    EXPECT_EQ(OB->curgroup, 0); // no mouse event so far: nothing is pointed at
    EXPECT_EQ(firstShown(), "g128 (0f)");
    EXPECT_EQ(paint().size(), 97U);
    press(key::pageDown);
    EXPECT_EQ(firstShown(), "g128 (0f)");
    mouse(256 + 20, 16 + 8);
    EXPECT_EQ(OB->curgroup, 5 * 32 + 1);
    press(key::pageUp);
    EXPECT_EQ(OB->curgroup, 32 + 1); // other entries have come under the mouse
    for (const double steps : {-0.25, -0.5, -0.5}) wheel(steps);
    EXPECT_EQ(firstShown(), "g32 (0f)");
    EXPECT_EQ(OB->curgroup, 32);
    wheel(-0.75); // and a quarter from before
    EXPECT_EQ(firstShown(), "g64 (0f)");
    wheel(1);
    EXPECT_EQ(firstShown(), "g32 (0f)");
    wheel(1e9);
    EXPECT_EQ(firstShown(), "g0 (0f)");
    // A drag may cross columns that are out of sight when it begins.
    down(key::ctrl);
    mouseOn(3, button::left);
    press(key::pageDown);
    mouseOn(7);
    EXPECT_STREQ(OB->groups[135].name, "g3");
    up(key::ctrl);
    press(key::escape);
    command(groupsList);
    EXPECT_EQ(firstShown(), "g0 (0f)");
}

TEST_F(NameList, ATextTooLongForItsColumnIsTheTitle) {
    // The fake platform makes a byte 7.5 pixels wide here: 33 of them fit into 251 pixels.
    addGroups(3);
    const std::string name(29, 'y');
    std::copy(name.begin(), name.end(), OB->groups[1].name);
    std::fill_n(OB->groups[0].name, 28, 'x');
    command(groupsList);
    const std::string where = "polyfab [] groups";
    mouseOn(0);
    paint();
    EXPECT_EQ(shown.windowTitle, where);
    mouseOn(1);
    EXPECT_EQ(shown.windowTitle, name + " (0f)");
    paint();
    paint();
    EXPECT_EQ(shown.windowTitle, name + " (0f)");
    press('S');
    EXPECT_EQ(shown.windowTitle, name + " (0f sel)");
    mouseOn(2);
    EXPECT_EQ(shown.windowTitle, where);
    mouseOn(1);
    press(key::escape);
    EXPECT_EQ(shown.windowTitle, "polyfab [] ");
}

TEST_F(NameList, OtherEventsKeepItOpen) {
    addEntries();
    command(groupsList);
    shown.log.clear();
    handleEvent({.kind = EventKind::drop, .paths = {"a.obj"}});
    EXPECT_EQ(shown.log, (Log{"beep", "title|close this list first, then drop the file"}));
    shown.log.clear();
    for (const int id : {264, 291, 256, 358, 262}) command(id);
    EXPECT_EQ(shown.log, Log{});
    command(263);
    EXPECT_EQ(shown.log.front(), "help");
    OB->changed = 1;
    shown.log.clear();
    handleEvent({.kind = EventKind::close});
    EXPECT_EQ(shown.log, Log{"question|you have not saved this object since you altered it last|"
                             "do you want to exit?"});
    down(key::shift);
    handleEvent({.kind = EventKind::menuOpening});
    EXPECT_FALSE(keyIsDown(key::shift));
    EXPECT_EQ(editorState.subview, subview::groups);
    shown.size = {400, 320};
    handleEvent({.kind = EventKind::resize});
    EXPECT_EQ(view.client.width, 400);
    paint();
    EXPECT_EQ(textAt(5, 11), "g1 (1f)");
}

TEST_F(NameList, DestroyingTheWindowInAListReleasesTheMesh) {
    addEntries();
    command(groupsList);
    mouseOn(2);
    const int blocks = storeBlocks();
    Group* groups = OB->groups;
    shown.log.clear();
    handleEvent({.kind = EventKind::destroy});
    EXPECT_EQ(shown.log, Log{});
    EXPECT_EQ(OB, nullptr);
    EXPECT_LT(storeBlocks(), blocks - 3);
    farfree(&groups); // stays behind a release
    createMesh();
}

TEST_F(NameList, DestroyingAFaultyMeshInAListSaysSo) {
    addEntries();
    command(partsList);
    OB->faces[2].g = 9;
    paint();
    mouseOn(2);
    void* arrays[] = {OB->points, OB->corners, OB->faces, OB->materials,
                      OB->groups, OB->tmas,    OB->parts};
    shown.log.clear();
    handleEvent({.kind = EventKind::destroy});
    EXPECT_EQ(shown.log, Log{"message!|bad image, so I am not free()'ing it|fac.g = 9 out of "
                             "range, should be 0 to 5"});
    EXPECT_EQ(OB, nullptr);
    for (void*& array : arrays) farfree(&array);
    createMesh();
}

} // namespace
} // namespace polyfab
