// SPDX-License-Identifier: GPL-3.0-or-later
// Commands on faces and their selection, as the menu gives them.
#include "display/view.h"
#include "editor/commands.h"
#include "editor/state.h"
#include "mesh/check.h"
#include "tests/mesh/random_mesh.h"

#include <algorithm>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

class FaceCommands : public test::MeshTest {
  protected:
    FaceCommands() {
        resetEditorState();
        stale = {false, false, false};
    }
    ~FaceCommands() override {
        resetEditorState();
        stale = Stale();
    }

    /// Faces of 3 to 6 corners on a circle, the second of them on one line.
    void addPolygons() {
        for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {6, 2}, {6, 4}, {3, 6}, {0, 4}, {2, 0}})
            OB->addPoint(x, y, 0, false);
        test::addFace({0, 1, 2});
        test::addFace({0, 1, 6, 0});
        test::addFace({0, 1, 2, 3, 4});
        test::addFace({0, 1, 2, 3, 4, 5});
    }
    std::vector<int> selected() {
        std::vector<int> list;
        for (int i = 0; i < OB->nf; ++i) {
            if (OB->faces[i].selected) list.push_back(i);
        }
        return list;
    }
};

TEST_F(FaceCommands, UnselectingCountsWhatWasUnselected) {
    addPolygons();
    runCommand(1066);
    EXPECT_EQ(shown.log.back(), "message|faces with 5 or more corners|2 such faces found");
    EXPECT_EQ(selected(), (std::vector<int>{2, 3}));
    EXPECT_TRUE(stale.edges);
    runCommand(290);
    OB->faces[0].q = nullptr;
    runCommand(1088);
    EXPECT_EQ(shown.log.back(), "message|zero-area faces|2 such faces found");
    EXPECT_EQ(selected(), (std::vector<int>{0, 1})); // face 0 is deleted and is left alone
    runCommand(1088);
    EXPECT_EQ(shown.log.back(), "message|zero-area faces|0 such faces found");
}

TEST_F(FaceCommands, NormalsAndTextureLeaveTheSelectedFacesOnly) {
    struct {
        int command;
        bool normals;
    } const cases[] = {{386, true}, {388, false}};
    for (const auto& row : cases) {
        test::RandomMesh(7).fill(8, 12, 5);
        const std::int32_t nd = OB->nd;
        OB->changed = 0;
        runCommand(row.command);
        for (int i = 0; i < OB->nf; ++i) {
            const Face& face = OB->faces[i];
            if (face.q == nullptr) continue;
            const auto has = [](const auto* reference) { return reference != nullptr; };
            const auto normal = [&](const FaceCorner& c) { return has(c.d); };
            const auto texture = [&](const FaceCorner& c) { return has(c.t); };
            const bool anyNormal = std::any_of(face.q, face.q + face.n, normal);
            const bool allTexture = std::all_of(face.q, face.q + face.n, texture);
            EXPECT_FALSE(row.normals && face.selected && anyNormal);
            EXPECT_EQ(allTexture, row.normals || !face.selected);
        }
        EXPECT_EQ(OB->nd, nd);
        EXPECT_EQ(OB->changed, 1);
        EXPECT_EQ(check(*OB), nullptr);
        OB->changed = 0;
        runCommand(row.command); // nothing left to remove
        EXPECT_EQ(OB->changed, 0);
    }
}

TEST_F(FaceCommands, TheCurrentFaceAndEdgeAreForgotten) {
    struct {
        int command;
        int face, edge; ///< what is left of the 2 and 1
    } const cases[] = {{284, -1, 1}, {396, 2, -1}, {267, 2, -1}, {397, 2, -1}, {280, 2, -1}};
    for (const auto& row : cases) {
        test::emptyMesh();
        test::addCube();
        OB->curface = 2;
        editorState.currentEdgeFace = editorState.currentEdgeCorner = 1;
        stale = {false, false, false};
        runCommand(row.command);
        EXPECT_EQ(OB->curface, row.face) << row.command;
        EXPECT_EQ(editorState.currentEdgeFace, row.edge) << row.command;
        EXPECT_EQ(editorState.currentEdgeCorner, row.edge) << row.command;
        EXPECT_TRUE(stale.picture || stale.edges) << row.command;
    }
}

TEST_F(FaceCommands, LeaveRandomMeshesSound) {
    test::RandomMesh random(11);
    for (int round = 0; round < 300; ++round) {
        random.fill(1 + random.below(10), 1 + random.below(10), 6);
        for (int i = 0; i < 4; ++i) {
            OB->addPart();
            OB->addTextureMapArea();
        }
        if (OB->curface >= 0 && OB->faces[OB->curface].q == nullptr) OB->curface = -1;
        for (int i = 0; i < OB->nf; ++i) {
            OB->faces[i].prt = static_cast<std::int16_t>(random.below(5));
            OB->faces[i].tma = static_cast<std::int16_t>(random.below(5));
        }
        for (int step = 0; step < 6; ++step) {
            constexpr int commands[] = {299,  316,  386,  388, 389, 398, 1051, 1067, 1066,
                                        1088, 370,  393,  402, 285, 287, 322,  327,  1025,
                                        1026, 1065, 1072, 397, 284, 396, 290};
            const int command = commands[random.below(std::ssize(commands))];
            if (random.below(3) == 0) shown.choices = {Choice::yes};
            runCommand(command);
            shown.choices.clear();
            ASSERT_EQ(check(*OB), nullptr) << command;
            ASSERT_TRUE(OB->curface < 0 || OB->faces[OB->curface].q != nullptr) << command;
        }
    }
}

} // namespace
} // namespace polyfab
