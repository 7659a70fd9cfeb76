// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/command_advice.h"
#include "editor/command_table.h"
#include "mesh/store.h"
#include "tests/editor/window_fixture.h"

#include <nlohmann/json.hpp>

namespace polyfab::test {
namespace {

using Window = WindowEvents;

TEST_F(Window, DeleteIsAShortcutWhereTheModeHasNoUseForIt) {
    for (const auto& [mode, wanted] : {std::pair(358, "Del"), {353, ""}, {349, ""}, {351, "Del"}}) {
        command(mode);
        const std::vector<MenuItem> all = items();
        const auto isDelete = [](const MenuItem& item) { return item.id == 299; };
        EXPECT_EQ(std::find_if(all.begin(), all.end(), isDelete)->key, wanted) << mode;
    }
}

TEST_F(Window, WhatIsNotBuiltIsGreyedAndDoesNothing) {
    addCube();
    const std::string before = dump();
    std::set<std::string> titles{listMenu}; // which stands in the bar of its sub-view
    std::set<int> ids;
    for (const Menu& menu : shown.bar) {
        EXPECT_TRUE(titles.insert(menu.title).second); // a menu's commands stand together
        for (const MenuItem& item : allItems(menu.items)) {
            EXPECT_TRUE(ids.insert(item.id).second) << item.id;
            const bool built = findCommand(item.id)->handler != nullptr;
            // Undo and redo grey while there is nothing for them to do.
            EXPECT_TRUE(item.enabled == built || menu.title == "&edit");
            EXPECT_EQ(built, item.advice != adviceOf(1048)) << item.id; // that is not built
            if (!built) command(item.id);
        }
    }
    // But for those of a list's bar, and the ten recent files that there are not.
    EXPECT_EQ(ids.size() + 11, commandTable().size());
    command(104); // the accelerator's command, which the window ignores
    EXPECT_EQ(dump(), before);
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(Window, NothingClosesItWhileABoxIsOpen) {
    cubeIn(358);
    struct : FakePlatform {
        Choice question(const std::string&, const std::string&, Buttons, Choice) override {
            log.push_back("asked");
            send(EventKind::close); // as at the end of the session
            return Choice::no;
        }
    } closing;
    command(299);
    EXPECT_EQ(closing.log,
              (Log{"asked", "beep", "title|Whoa there, I am in the middle of something!!",
                   "note|nothing was changed"}));
    OB->changed = 1;
    closing.log.clear();
    send(EventKind::close); // and once more in its own question
    EXPECT_EQ(closing.log.size(), 3U);
    closing.log.clear();
    workbench.busy = true;
    send(EventKind::close);
    EXPECT_EQ(closing.log, (Log{"beep", "title|Whoa there, I got a file open!!"}));
    workbench.busy = false;
    OB->changed = 0;
    send(EventKind::close); // now nothing is in the way
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

TEST_F(Window, TheDumpReplacesWhatIsNoText) {
    OB->addGroup("\xff");
    EXPECT_EQ(nlohmann::json::parse(dump())["groups"].back()["name"], "\uFFFD");
}

} // namespace
} // namespace polyfab::test
