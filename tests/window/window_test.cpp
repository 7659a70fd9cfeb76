// SPDX-License-Identifier: GPL-3.0-or-later
// The window as a user has it, from the drop of a file to the exit question.
#include "tests/support/temp_folder.h"
#include "tests/window/user.h"

#include "editor/state.h"

#include <sstream>

namespace polyfab::test {
namespace {

/// Eight triangles, each in a group of its own: "g0" to "g7".
std::string groupsFile() {
    std::ostringstream text;
    for (int i = 0; i < 8; ++i) {
        text << "g g" << i << "\nv " << 2 * i << " 0 0\nv " << 2 * i + 1 << " 0 0\nv " << 2 * i
             << " 1 0\nf -3 -2 -1\n";
    }
    return text.str();
}

class WindowTest : public User {
  protected:
    WindowTest() { drop(folder.write("groups.obj", groupsFile())); }

    /// The middle of this entry's cell in a name list.
    QPoint cell(int entry) {
        const Size size = backend.clientSize();
        const int width = size.width / 4;
        const int height = size.height / 32;
        return {entry / 32 * width + width / 2, entry % 32 * height + height / 2};
    }
    std::string groupNames() {
        std::string names;
        for (int i = 0; i < OB->ng; ++i) names += std::string(OB->groups[i].name) + " ";
        return names;
    }
    int selectedFaces() {
        int count = 0;
        for (int i = 0; i < OB->nf; ++i) count += OB->faces[i].selected;
        return count;
    }
    TempFolder folder;
};

TEST_F(WindowTest, ADroppedFileIsEditedAndTheExitQuestionAnswered) {
    EXPECT_EQ(OB->nf, 8);
    EXPECT_EQ(backend.title(), "polyfab [" + folder.path("groups.obj") + "] ");
    menu('a', 'u'); // unselect all faces
    EXPECT_EQ(selectedFaces(), 0);
    menu('a', 's');
    EXPECT_EQ(selectedFaces(), 8);
    answerButton("yes");
    menu('a', 'd'); // delete selected faces
    int live = 0;
    for (int i = 0; i < OB->nf; ++i) live += OB->faces[i].q != nullptr;
    EXPECT_EQ(live, 0);
    answerButton("no");
    window.close();
    settle();
    EXPECT_TRUE(window.isVisible());
    answerButton("yes");
    menu('f', 'x');
    EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowTest, GroupsArePickedRenamedAndReordered) {
    menu('u', 's');
    EXPECT_EQ(editorState.subview, 1);
    EXPECT_EQ(backend.title(), "polyfab [" + folder.path("groups.obj") + "] groups");

    answerText("roof");
    mouseDown(cell(3), Qt::RightButton);
    mouseUp(cell(3), Qt::RightButton);
    EXPECT_STREQ(OB->groups[3].name, "roof");

    hold(Qt::Key_Control); // a press without Ctrl would pick and close
    mouseDown(cell(5));
    mouseUp(cell(2));
    release(Qt::Key_Control);
    EXPECT_EQ(groupNames(), "g0 g1 g5 g2 roof g4 g6 g7 ");
    EXPECT_EQ(OB->faces[5].g, 2); // it still is in "g5"

    press(Qt::Key_C);
    mouseDown(cell(4));
    EXPECT_EQ(editorState.subview, 0);
    EXPECT_EQ(selectedFaces(), 1);
    EXPECT_TRUE(OB->faces[3].selected);
    EXPECT_EQ(backend.title(), "polyfab [" + folder.path("groups.obj") + "] ");
    mouseUp(cell(4));
}

} // namespace
} // namespace polyfab::test
