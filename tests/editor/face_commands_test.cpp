// SPDX-License-Identifier: GPL-3.0-or-later
// Commands on faces and their selection, as the menu gives them.
#include "mesh/edges.h"
#include "mesh/stale.h"
#include "tests/editor/window_fixture.h"
#include "tests/mesh/random_mesh.h"

namespace polyfab::test {
namespace {

using FaceCommands = WindowEvents;

TEST_F(FaceCommands, UnselectingCountsWhatWasUnselected) {
    for (const auto& [x, y] : {std::pair(0, 0), {4, 0}, {6, 2}, {3, 6}, {0, 4}, {2, 0}}) {
        OB->addPoint(x, y, 0, false);
    }
    addFace({0, 1, 2});
    addFace({0, 1, 5, 0}); // on one line
    addFace({0, 1, 2, 3});
    addFace({0, 1, 2, 3, 4});
    EXPECT_EQ(run(1066), Log{"message|faces with 5 or more corners|3 such faces found"});
    EXPECT_EQ(selected(), Numbers{3});
    command(290);
    OB->faces[0].q = nullptr;
    EXPECT_EQ(run(1088), Log{"message|zero-area faces|2 such faces found"});
    EXPECT_EQ(selected(), (Numbers{0, 1})); // face 0 is deleted and is left alone
}

TEST_F(FaceCommands, NormalsAndTextureLeaveTheSelectedFacesOnly) {
    for (const bool normals : {true, false}) {
        RandomMesh(7).fill(8, 12, 5);
        const std::vector<FaceCorner> before(OB->corners, OB->corners + OB->nq);
        for (const int changed : {1, 0}) { // then there is nothing left to remove
            OB->changed = 0;
            command(normals ? 386 : 388);
            EXPECT_EQ(OB->changed, changed);
        }
        for (const Face* face = OB->faces; face != OB->faces + OB->nf; ++face) {
            for (int k = 0; face->q != nullptr && k < face->n; ++k) {
                const FaceCorner& was = before[static_cast<std::size_t>(face->q - OB->corners + k)];
                EXPECT_EQ(face->q[k].d, normals && face->selected ? nullptr : was.d);
                EXPECT_EQ(face->q[k].t, !normals && face->selected ? nullptr : was.t);
            }
        }
    }
}

TEST_F(FaceCommands, TheCurrentFaceAndEdgeAreForgotten) {
    for (const int id : {284, 396, 267, 397, 280, 360}) {
        cubeIn(358);
        OB->curface = 2;
        workbench.currentEdgeFace = workbench.currentEdgeCorner = 1;
        stale = {false, false, false};
        command(id);
        EXPECT_EQ(OB->curface, id == 284 ? -1 : 2) << id;
        EXPECT_EQ(workbench.currentEdgeFace, id == 284 ? 1 : -1) << id;
        EXPECT_TRUE(stale.picture || stale.edges) << id;
    }
    workbench.currentEdgeFace = 1;
    select({0});
    command(397); // turns another face over
    EXPECT_EQ(workbench.currentEdgeFace, 1);
}

TEST_F(FaceCommands, BadEdgesAreFoundAndShownAndRepaired) {
    addCube();
    reverseFace(OB->faces[3]);
    OB->faces[0].q = nullptr;
    for (int i = 0; i < 2; ++i) command(360); // no switch: they stay shown
    EXPECT_EQ(OB->nf, 5);
    EXPECT_TRUE(displayOptions.badEdges);
    // Both sides of the three edges that the turned face still shares.
    const auto badSides = [] {
        const auto isBad = [](const FaceCorner& corner) { return corner.edgeuse == 255; };
        return std::count_if(OB->corners, OB->corners + OB->nq, isBad);
    };
    EXPECT_EQ(badSides(), 6);
    OB->curface = 1;
    for (const int id : {280, 360}) command(id);
    EXPECT_EQ(badSides(), 0);
    OB->faces[0].q = nullptr;
    command(267);
    EXPECT_EQ(OB->nf, 4);
}

} // namespace
} // namespace polyfab::test
