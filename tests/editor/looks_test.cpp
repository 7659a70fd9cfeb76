// SPDX-License-Identifier: GPL-3.0-or-later
// What stands around the panes: marks and separators of menus, help, context menu and tool bar.
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/help.h"
#include "io/state_folder.h"
#include "tests/editor/window_fixture.h"
#include "tests/support/temp_folder.h"

#include <fstream>
#include <set>

namespace polyfab::test {
namespace {

using Looks = WindowEvents;

TEST_F(Looks, MenusArePartedAndTheirLettersDiffer) {
    const auto parts = [](const MenuItem& item) { return item.id == 0 && item.items.empty(); };
    const std::function<void(const std::vector<MenuItem>&)> check = [&](const auto& items) {
        ASSERT_FALSE(items.empty());
        EXPECT_FALSE(parts(items.front()) || parts(items.back()));
        std::set<int> letters;
        for (std::size_t i = 0; i < items.size(); ++i) {
            const std::string& label = items[i].label;
            const std::size_t mark = label.find('&');
            const int letter = mark == std::string::npos ? 0 : std::tolower(label[mark + 1]);
            EXPECT_TRUE(letter == 0 || letters.insert(letter).second) << label;
            EXPECT_FALSE(i > 0 && parts(items[i]) && parts(items[i - 1]));
            if (!items[i].items.empty()) check(items[i].items);
        }
        EXPECT_LE(items.size(), 28U); // on a low screen it would have two columns
    };
    for (const Menu& menu : shown.bar) check(menu.items);
}

TEST_F(Looks, JustOneOfSeveralIsMarked) {
    const auto marked = [this] {
        std::set<int> ids;
        for (const MenuItem& item : items()) {
            if (item.radio && item.checked) ids.insert(item.id);
        }
        return ids;
    };
    EXPECT_EQ(marked(), (std::set{358, 297, 333, 336}));
    command(379);
    command(298);
    EXPECT_EQ(marked(), (std::set{379, 298, 333, 336}));
}

TEST_F(Looks, HelpOpensAtAChapterOfTheManual) {
    std::ifstream file(POLYFAB_DOCS "/manual.md");
    std::set<std::string> chapters{""};
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("##")) continue;
        line.erase(0, line.find(' ') + 1);
        std::erase(line, ',');
        for (char& letter : line)
            letter = letter == ' ' ? '-' : static_cast<char>(std::tolower(letter));
        chapters.insert(line);
    }
    for (const Command& row : commandTable()) {
        const bool list = row.id == 264;
        if (row.handler == nullptr || !(list || entersMode(row.id))) continue;
        command(row.id);
        const std::string opened = run(263).front();
        EXPECT_TRUE(chapters.contains(opened.substr(opened.find('|') + 1))) << opened;
        if (list) key(key::escape);
    }
    EXPECT_NE(keySheet().find("| Ctrl\\+\\+; Ctrl\\+= | grow the selection by one ring |"),
              std::string::npos);
}

TEST_F(Looks, ARightClickOpensAMenuWhereTheButtonHasNoOtherUse) {
    const struct {
        int mode, across;
        unsigned buttons;
        bool opens;
    } cases[] = {{358, 0, button::right, true},
                 {358, 2, button::right, true},
                 {358, 9, button::right, false},
                 {358, 0, button::left, false},
                 {349, 0, button::right, true},
                 {351, 0, button::right, false},
                 {358, 0, button::right | button::left, false}};
    for (const auto& row : cases) {
        cubeIn(row.mode);
        shown.contextMenu.clear();
        drag(100, 100, row.across, 0, row.buttons);
        EXPECT_EQ(!shown.contextMenu.empty(), row.opens) << &row - cases;
        for (const int id : shown.contextMenu) EXPECT_TRUE(id == 0 || findItem(shown.bar, id));
    }
}

TEST_F(Looks, TheToolBarStaysAwayInTheNextRun) {
    const TempFolder folder;
    stateFolder = folder.path("");
    for (const bool on : {false, true}) {
        command(2072);
        shown.toolsShown = true;
        editorState.toolBar = !on;
        send(EventKind::create);
        EXPECT_EQ(shown.toolsShown, on);
        EXPECT_EQ(findItem(shown.bar, 2072)->checked, on);
    }
    for (const ToolButton& tool : shown.tools) {
        EXPECT_TRUE(tool.id == 0 || findItem(shown.bar, tool.id)) << tool.icon;
    }
    stateFolder.clear();
}

} // namespace
} // namespace polyfab::test
