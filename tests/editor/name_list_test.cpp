// SPDX-License-Identifier: GPL-3.0-or-later
// The name lists as the window drives them, in cells of 256 x 16 pixels.
#include "editor/editor_state.h"
#include "editor/lists/name_list.h"

#include "display/pane_images.h"
#include "tests/editor/window_fixture.h"

#include <climits>
#include <cstring>

namespace polyfab::test {
namespace {

constexpr int groupsList = 264, materialsList = 328;

class NameList : public WindowEvents {
  protected:
    /// Makes it so many groups "g0", "g1"..., none picked.
    static void addGroups(int count) {
        for (int i = 0; i < count; ++i) {
            if (i >= OB->ng) OB->addGroup("g" + std::to_string(i));
            OB->groups[i].selected = 0;
        }
        std::strcpy(OB->groups[0].name, "g0");
        OB->changed = 0;
    }

    static void mouseOn(int entry, unsigned buttons = 0) {
        mouse(entry / 32 * 256 + 20, entry % 32 * 16 + 8, buttons);
    }
    /// The text in this cell of a new picture.
    std::string cell(int column, int row) {
        shown.texts.clear();
        send(EventKind::paint);
        const int x = shown.size.width / 4 * column + 5;
        const int y = shown.size.height / 32 * row + 1;
        for (const auto& text : shown.texts) {
            if (text.x == x && text.y == y) return text.text;
        }
        return "";
    }
    static bool open() { return editorState.subview != 0; }
};

TEST_F(NameList, ShowsEveryEntryInItsCell) {
    addGroups(40);
    addCube();
    for (int f = 0; f < 6; ++f) OB->faces[f].g = f < 4 ? 33 : 1;
    OB->faces[0].q = nullptr; // deleted, in 33
    OB->faces[4].selected = 0;
    OB->faces[5].g = 40; // out of range
    OB->groups[33].texture = 7;
    OB->groups[2].selected = 1;
    command(groupsList);
    OB->curgroup = 1;
    EXPECT_EQ(cell(0, 31), "g31 (0f)");
    EXPECT_EQ(cell(1, 1), "g33 (3f)");
    EXPECT_EQ(cell(3, 31), "(press esc or click a name)");
    EXPECT_EQ(shown.texts.size(), 41U);
    for (const auto& text : shown.texts) {
        EXPECT_EQ(text.color, text.text == "g1 (1f)" ? 0xFFC80000 : 0xFF000000);
    }
    const std::vector<std::uint32_t>& pixels = shown.picture.pixels;
    const std::uint32_t mark = paneImages.right.pixels[0]; // of picked entries
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), mark), 16);
    EXPECT_EQ(std::find(pixels.begin(), pixels.end(), mark) - pixels.begin(), 34 * 1024 + 1);
    key('S');
    command(385);
    EXPECT_EQ(cell(0, 1), "0:g1 (0f sel)");
    EXPECT_EQ(cell(1, 1), "7:g33 (3f sel)");
    // Both switches outlive the list, and numbers are no business of the materials.
    key(key::escape);
    command(materialsList);
    EXPECT_EQ(cell(0, 0), "default (0f sel)");
    key('S');
    command(385); // not in the menu of this list
    EXPECT_TRUE(!nameList.selectedOnly && nameList.textureNumbers);
}

TEST_F(NameList, PointsByWholeCellsToTheLetter) {
    addGroups(70);
    command(groupsList);
    const auto pointed = [&](Size client, const Spot& spot) {
        shown.size = client;
        mouse(spot, 0);
        send(EventKind::paint); // of any size
        return OB->curgroup;
    };
    const Size usual{1024, 512};
    const std::tuple<Size, Spot, int> rows[] = {
        {usual, {255, 15}, 0},       {usual, {256, 16}, 33},   {usual, {5, 512}, 32},
        {{1027, 543}, {1, 542}, 33}, {{4, 32}, {2, 5}, 69},    {usual, {512, 96}, -1},
        {usual, {-1, 5}, -1},        {usual, {5, -1}, -1},     {usual, {INT_MAX, INT_MAX}, -1},
        {{3, 512}, {0, 0}, -1},      {{1024, 31}, {0, 0}, -1}, {{0, 0}, {0, 0}, -1}};
    for (const auto& [client, spot, entry] : rows) EXPECT_EQ(pointed(client, spot), entry);
}

TEST_F(NameList, KeysActOncePerPress) {
    addGroups(3);
    command(groupsList);
    down('S');
    send(EventKind::deactivate); // its key-up goes elsewhere
    down('S');
    EXPECT_FALSE(nameList.selectedOnly);
    workbench.textureNumber = 6;
    OB->groups[1].selected = 1;
    for (const int code : {int{'T'}, -1, 999}) key(code);
    EXPECT_TRUE(OB->groups[1].texture == 6 && OB->groups[2].texture == 0);
}

TEST_F(NameList, LongListsScrollByColumns) {
    addGroups(7 * 32 + 1); // 8 columns, the first of a full window is at most 4
    command(groupsList);
    EXPECT_EQ(cell(3, 31), "g127 (0f)"); // no hint
    for (int i = 0; i < 2; ++i) key(key::pageDown);
    EXPECT_EQ(OB->curgroup, 0); // no mouse event so far: nothing is pointed at
    EXPECT_EQ(cell(0, 0), "g128 (0f)");
    mouseOn(33);
    EXPECT_EQ(OB->curgroup, 5 * 32 + 1);
    key(key::pageUp);
    EXPECT_EQ(OB->curgroup, 32 + 1); // another entry has come under the mouse
    for (const double steps : {-0.25, -0.5, -0.5, -0.75}) wheel(20, 8, steps);
    EXPECT_EQ(OB->curgroup, 64);
    wheel(20, 8, 1e9);
    EXPECT_EQ(cell(0, 0), "g0 (0f)");
    // A drag may cross columns that are out of sight when it begins.
    down(key::ctrl);
    mouseOn(3, button::left);
    key(key::pageDown);
    mouseOn(7);
    EXPECT_STREQ(OB->groups[135].name, "g3");
    key(key::escape);
    command(groupsList);
    EXPECT_EQ(cell(0, 0), "g0 (0f)");
}

TEST_F(NameList, LettersAndSpaceWorkIt) {
    addGroups(200);
    for (const int i : {3, 150, 151}) std::strcpy(OB->groups[i].name, i == 3 ? "Ant" : "quad");
    command(groupsList);
    const auto types = [](int code, int held = 0) {
        if (held != 0) down(held);
        key(code);
        if (held != 0) up(held);
        return std::pair(int{OB->curgroup}, nameList.first);
    };
    EXPECT_EQ(types('Q'), std::pair(150, 32));
    EXPECT_EQ(types('Q'), std::pair(151, 32));
    EXPECT_EQ(types('A', key::shift), std::pair(3, 0)); // without Shift it picks all
    EXPECT_EQ(types('Q', key::alt), std::pair(3, 0));
    EXPECT_EQ(types('Q', key::ctrl), std::pair(3, 0));
    EXPECT_EQ(types('Z'), std::pair(3, 0));
    EXPECT_EQ(shown.log.back(), "note|nothing here begins with Z");
    EXPECT_EQ(shown.status.right, "1-128 of 200 groups, 0 picked");
    key(key::space);
    EXPECT_TRUE(OB->groups[3].selected && open());
    types('Q');
    EXPECT_TRUE(shown.scrollBar.first == 1 && shown.scrollBar.shown == 4
                && shown.scrollBar.all == 7);
    key(key::enter);
    EXPECT_TRUE(!OB->groups[3].selected && OB->groups[150].selected && !open());
    EXPECT_EQ(shown.scrollBar.all, 0);
}

TEST_F(NameList, TextsAreNoSmallerThanTheDesktops) {
    addGroups(60);
    shown.desktopText = 15;
    shown.size = {400, 165}; // ten rows
    command(groupsList);
    EXPECT_EQ(cell(0, 0), "g0 (0f)");
    mouse(105, 17, 0);
    EXPECT_EQ(OB->curgroup, 11);
    key(key::pageDown);
    EXPECT_EQ(nameList.first, 20);
    shown.size = {400, 1000};
    send(EventKind::resize);
    EXPECT_EQ(nameList.first, 0);
}

TEST_F(NameList, CommandsOfTheMeshWait) {
    command(groupsList);
    for (const int id : {264, 291, 358}) EXPECT_EQ(run(id), Log());
    EXPECT_EQ(run(262), Log{"close"});
    for (const MenuItem& item : items())
        EXPECT_EQ(item.enabled, item.id != 2010 && item.id != 2011);
    EXPECT_TRUE(open());
}

} // namespace
} // namespace polyfab::test
