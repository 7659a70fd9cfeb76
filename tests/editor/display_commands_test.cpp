// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/display_commands.h"

#include "editor/commands.h"
#include "editor/menus.h"
#include "editor/state.h"
#include "editor/window.h"
#include "mesh/edges.h"
#include "tests/support/mesh_fixture.h"

#include <cstddef>
#include <set>

namespace polyfab::test {
namespace {

class DisplayCommands : public MeshTest {
  protected:
    DisplayCommands() {
        resetEditorState();
        handleEvent({.kind = EventKind::create});
        addCube();
    }
    ~DisplayCommands() override {
        displayOptions = {};
        resetEditorState();
    }

    void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }
    /// The check marks that show in the display menu.
    std::set<int> checks() const {
        std::set<int> ids;
        for (const Menu& menu : shown.bar) {
            for (const MenuItem& item : menu.items) {
                if (menu.title == "&display" && item.checked) ids.insert(item.id);
            }
        }
        return ids;
    }
};

TEST_F(DisplayCommands, EachSwitchHasItsOwnOptionAndCheckMark) {
    const auto options = reinterpret_cast<const bool*>(&displayOptions);
    const std::set<int> before = checks();
    EXPECT_EQ(before, (std::set<int>{1029, 1030}));
    std::set<std::size_t> thrown;
    for (const Command& row : commandTable()) {
        if (std::string(row.menu) != "&display" || row.handler == nullptr) continue;
        stale = {false, false, false};
        const int requests = shown.paintRequests;
        command(row.id);
        EXPECT_GT(shown.paintRequests, requests);
        const DisplayOptions usual;
        for (std::size_t i = 0; i < sizeof usual; ++i) {
            if (options[i] != reinterpret_cast<const bool*>(&usual)[i]) thrown.insert(i);
        }
        EXPECT_NE(checks().count(row.id), before.count(row.id)) << row.id;
        command(row.id);
        EXPECT_EQ(checks(), before) << row.id;
    }
    EXPECT_EQ(thrown.size(), sizeof(DisplayOptions));
}

TEST_F(DisplayCommands, BadEdgesAreFoundAndShown) {
    reverseFace(OB->faces[3]);
    OB->faces[0].q = nullptr;
    editorState.currentEdgeFace = editorState.currentEdgeCorner = 1;
    command(360);
    EXPECT_EQ(OB->nf, 5);
    EXPECT_EQ(editorState.currentEdgeFace, -1);
    EXPECT_TRUE(checks().contains(270));
    int bad = 0;
    for (int i = 0; i < OB->nq; ++i) bad += OB->corners[i].edgeuse == 255;
    EXPECT_EQ(bad, 6); // both sides of the three edges that the turned face still shares
    command(360);      // no switch: they stay shown
    EXPECT_TRUE(checks().contains(270));
}

} // namespace
} // namespace polyfab::test
