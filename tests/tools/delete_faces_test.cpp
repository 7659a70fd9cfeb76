// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/delete_faces.h"

#include "tests/tools/tool_test.h"

namespace polyfab {
namespace {

using Log = std::vector<std::string>;
using Faces = std::vector<int>;

class DeleteFaces : public test::ToolTest {
  protected:
    DeleteFaces() {
        test::addCube();
        for (const int face : {0, 2, 3}) OB->faces[face].selected = 0;
        OB->faces[5].q = nullptr;
        OB->curface = editorState.currentEdgeFace = 4;
        editorState.currentEdgeCorner = 2;
        OB->changed = 0;
    }
};

TEST_F(DeleteFaces, AsksFirst) {
    shown.choices = {Choice::no, Choice::no};
    deleteSelectedFaces(*OB);
    deleteUnselectedFaces(*OB);
    const std::string question = "question|bulk delete|do you really want to delete these faces?";
    EXPECT_EQ(shown.log, (Log{question, question}));
    EXPECT_EQ(test::liveFaces(), (Faces{0, 1, 2, 3, 4}));
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(DeleteFaces, TheCurrentFaceAndEdgeStayOnlyIfTheirFaceDoes) {
    shown.choices = {Choice::yes, Choice::yes};
    deleteUnselectedFaces(*OB);
    EXPECT_EQ(test::liveFaces(), (Faces{1, 4}));
    EXPECT_EQ(OB->curface, 4);
    EXPECT_EQ(editorState.currentEdgeCorner, 2);
    EXPECT_EQ(OB->changed, 1);
    deleteSelectedFaces(*OB);
    EXPECT_EQ(test::liveFaces(), Faces());
    EXPECT_EQ(OB->curface, -1);
    EXPECT_EQ(editorState.currentEdgeFace, -1);
    EXPECT_EQ(editorState.currentEdgeCorner, -1);
    EXPECT_EQ(check(*OB), nullptr);
}

TEST_F(DeleteFaces, OnlySelectedFacesAloneInTheirPartGoUnasked) {
    for (int i = 0; i < 3; ++i) OB->addPart();
    const std::int16_t parts[] = {0, 0, 1, 2, 3, 3}; // face 5 is deleted and counts for nothing
    for (int i = 0; i < 6; ++i) OB->faces[i].prt = parts[i];
    deletePartsOfOneFace(*OB);
    EXPECT_EQ(test::liveFaces(), (Faces{0, 1, 2, 3}));
    EXPECT_TRUE(shown.log.empty());
    EXPECT_EQ(OB->changed, 1);
}

} // namespace
} // namespace polyfab
