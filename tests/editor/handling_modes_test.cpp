// SPDX-License-Identifier: GPL-3.0-or-later
// What the handling modes leave in the current face, edge and vertex; what they do to the mesh is
// in tests/scenarios/handling.txt.
#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

using HandlingModes = WindowEvents;

constexpr Spot topRight{355, 155}, bottomRight{355, 355}, top{255, 155}, middle{255, 255};

TEST_F(HandlingModes, AnEdgeIsCurrentUntilItIsDeletedOrAnotherThingIs) {
    cubeIn(348);
    click(top);
    const int face = workbench.currentEdgeFace, corner = workbench.currentEdgeCorner;
    ASSERT_TRUE(isLive(face));
    EXPECT_EQ(OB->faces[face].q[corner].p->y, 1);
    EXPECT_EQ(OB->faces[face].q[(corner + 1) % 4].p->y, 1);
    key(46);
    EXPECT_TRUE(workbench.currentEdgeFace == -1 && liveFaces() == 5);
    workbench.currentEdgeFace = 5;
    click(middle); // no edge is there
    EXPECT_EQ(workbench.currentEdgeFace, -1);
    workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
    command(349);
    click(middle);
    EXPECT_EQ(workbench.currentEdgeFace, -1);
}

TEST_F(HandlingModes, TheCurrentVertexIsHighlighted) {
    cubeIn(353);
    click(topRight);
    EXPECT_TRUE(OB->curvertex == 7 && OB->points[7].highlighted == 1);
    click(middle);
    EXPECT_TRUE(OB->curvertex == -1 && OB->points[7].highlighted == 0);
    down(key::ctrl);
    workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
    drag(topRight, bottomRight); // welds it
    EXPECT_EQ(workbench.currentEdgeFace, -1);
    EXPECT_TRUE(OB->curvertex == 5 && OB->points[5].highlighted == 1);
}

} // namespace
} // namespace polyfab::test
