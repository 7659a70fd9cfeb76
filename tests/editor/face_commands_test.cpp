// SPDX-License-Identifier: GPL-3.0-or-later
// What commands on faces leave of the current face and edge, and of the picture.
#include "mesh/stale.h"
#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

using FaceCommands = WindowEvents;

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
    cubeIn(358);
    stale.edges = false;
    shown.dialogAnswers = {{"2", "3", "2", "3", "2", "3", "walls", "brick"}};
    command(282); // makes a block
    EXPECT_TRUE(stale.edges);
    OB->faces[2].q = nullptr; // of a deleted face nothing is touched
    command(291);
    EXPECT_EQ(OB->faces[2].selected, 1);
    workbench.currentEdgeFace = 1;
    select({0});
    command(397); // turns another face over
    EXPECT_EQ(workbench.currentEdgeFace, 1);
}

} // namespace
} // namespace polyfab::test
