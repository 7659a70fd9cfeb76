// SPDX-License-Identifier: GPL-3.0-or-later
// The real editor in the real window, from the drop of a file to the exit question.
#include "editor/editor_state.h"
#include "editor/window.h"
#include "mesh/mesh.h"
#include "tests/platform/driver.h"
#include "tests/support/temp_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace polyfab::test {
namespace {

const Answer yes{Answer::Kind::text, "yes"}, no{Answer::Kind::text, "no"};

/// Eight triangles, each in a group of its own: "g0" to "g7".
std::string groupsFile() {
    std::ostringstream text;
    for (int i = 0; i < 8; ++i) {
        text << "g g" << i << "\nv " << 2 * i << " 0 0\nv " << 2 * i + 1 << " 0 0\nv " << 2 * i
             << " 1 0\nf -3 -2 -1\n";
    }
    return text.str();
}

class WindowTest : public testing::Test {
  protected:
    WindowTest() {
        resetEditorState();
        driver = makeQtDriverOf(editorProgram());
        const std::string path = folder.write("groups.obj", groupsFile());
        driver->input({EventKind::drop, 0, 0, 0, 0, 0, {path}});
        title = "polyfab [" + path + "] ";
    }
    ~WindowTest() override {
        driver.reset();
        setPlatform(nullptr);
        resetEditorState();
    }

    void choose(const std::string& label, const std::deque<Answer>& answers = {}) {
        for (const CommandInfo& command : editorProgram().commands()) {
            if (command.label == label) driver->choose(command.id, answers);
        }
    }
    /// Moves to the middle of this entry's cell in a name list, with these buttons down.
    void mouse(int entry, unsigned buttons, const std::deque<Answer>& answers = {}) {
        const Size size = platform().clientSize();
        const int width = size.width / 4, height = size.height / 32;
        driver->input({EventKind::mouse, 0, 0, entry / 32 * width + width / 2,
                       entry % 32 * height + height / 2, buttons},
                      answers);
    }
    static std::string groupNames() {
        std::string names;
        for (int i = 0; i < OB->ng; ++i) names += std::string(OB->groups[i].name) + " ";
        return names;
    }
    static auto selectedFaces() {
        return std::count_if(OB->faces, OB->faces + OB->nf,
                             [](const Face& face) { return face.selected != 0; });
    }

    const TempFolder folder;
    std::string title;
    std::unique_ptr<Driver> driver;
};

TEST_F(WindowTest, ADroppedFileIsEditedAndTheExitQuestionAnswered) {
    EXPECT_EQ(OB->nf, 8);
    EXPECT_EQ(platform().title(), title);
    choose("&unselect all faces");
    EXPECT_EQ(selectedFaces(), 0);
    choose("&select all faces");
    EXPECT_EQ(selectedFaces(), 8);
    choose("&delete selected faces", {yes});
    for (int i = 0; i < OB->nf; ++i) EXPECT_EQ(OB->faces[i].q, nullptr);
    driver->input({EventKind::close}, {no});
    EXPECT_TRUE(driver->isOpen());
    choose("e&xit", {yes});
    EXPECT_FALSE(driver->isOpen());
}

TEST_F(WindowTest, GroupsArePickedRenamedAndReordered) {
    choose("&select groups by menu");
    EXPECT_EQ(platform().title(), title + "groups");

    mouse(3, button::right, {{Answer::Kind::text, "roof"}});
    mouse(3, 0);
    EXPECT_STREQ(OB->groups[3].name, "roof");

    driver->input({EventKind::keyDown, 0, key::ctrl}); // a press without Ctrl would pick and close
    mouse(5, button::left);
    mouse(2, 0);
    driver->input({EventKind::keyUp, 0, key::ctrl});
    EXPECT_EQ(groupNames(), "g0 g1 g5 g2 roof g4 g6 g7 ");
    EXPECT_EQ(OB->faces[5].g, 2); // it still is in "g5"

    driver->input({EventKind::keyDown, 0, 'C'});
    driver->input({EventKind::keyUp, 0, 'C'});
    mouse(4, button::left);
    EXPECT_EQ(selectedFaces(), 1);
    EXPECT_TRUE(OB->faces[3].selected);
    EXPECT_EQ(platform().title(), title);
    mouse(4, 0);
}

} // namespace
} // namespace polyfab::test
