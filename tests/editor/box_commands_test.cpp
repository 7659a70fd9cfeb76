// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/edges.h"
#include "mesh/stale.h"
#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

using BoxCommands = WindowEvents;

TEST_F(BoxCommands, SelectingInAndOutOfTheBoxAndByDirection) {
    addCube(); // faces z = -1, z = 1, y = -1, y = 1, x = -1, x = 1
    addCube();
    OB->faces[5].q = nullptr;
    shift(8, {4, 0, 0});
    fitBox(*OB, false);
    // That takes the second cube out, and of the first one all that reaches up to y = 1.
    box.right.x = projection.toScreen({1, 0, 0}).x;
    box.left.y += 1;
    struct Row {
        int command;
        Numbers before, after;
    };
    const Row rows[] = {{292, {0, 7}, {0, 2, 7}},
                        {293, {0, 2, 3, 7}, {0, 3, 7}},
                        {294, {0}, {0, 1, 3, 4, 6, 7, 8, 9, 10, 11}},
                        {295, {0, 2, 3, 7}, {2}},
                        {325, {0, 1, 2, 6, 7, 8}, {1, 2, 7, 8}}, // z = -1 is seen from behind
                        {326, {0, 1, 2, 6, 7, 8}, {0, 2, 6, 8}}};
    for (const Row& row : rows) {
        select(row.before);
        stale.points = true;
        EXPECT_EQ(run(row.command), Log());
        EXPECT_EQ(selected(), row.after) << row.command;
    }
}

TEST_F(BoxCommands, SizeAndRangeAreInWorldUnits) {
    addCube();
    for (Point* p = OB->points; p != OB->points + 8; ++p) p->x = 1.5 * p->x + 1.5, p->y = 0;
    for (const bool turned : {false, true}) {
        if (turned) turnView(1, M_PI / 2, true);      // screen x shows z
        for (int width = 300; width < 340; ++width) { // whose rounding shows in no figure
            resizeView({width, 200});
            fitView(*OB);
            fitBox(*OB, false);
            std::swap(box.left.x, box.right.x);
            resizeView({333, 777});
            EXPECT_EQ(run(1058), Log{std::string("message|absolute size of the box|")
                                     + (turned ? "dx=2, dy=0, dz=3" : "dx=3, dy=0, dz=2")});
            EXPECT_EQ(run(1082),
                      Log{"message|absolute range of the box|x: 0 to 3\ny: 0 to 0\nz: -1 to 1"});
        }
    }
}

TEST_F(BoxCommands, CenteringMovesTheSelectedFacesAndTheBox) {
    turnView(1, 0.6, true);
    addCube(); // which stays
    addCube();
    shift(8, {3, 5, 7});
    select({6, 7}); // all points of the second cube
    EXPECT_EQ(run(2003), Log());
    for (const auto& [axes, x, z] : {std::tuple("Y", 3, 7), {"zx", 0, 0}}) {
        OB->changed = 0;
        shown.dialogAnswers = {{"w"}, {""}, {axes}};
        command(1024);
        for (int i = 0; i < 8; ++i) {
            const Vec3 corner{i & 1 ? 1.0 : -1, i & 2 ? 1.0 : -1, i & 4 ? 1.0 : -1};
            expectNear(point(i), corner, 0);
            expectNear(point(8 + i), {corner.x + x, corner.y, corner.z + z});
        }
        EXPECT_EQ(OB->changed, 1);
        const Box moved = box;
        fitBox(*OB, true);
        expectNear(moved.left, box.left, 1e-9);
        expectNear(moved.right, box.right, 1e-9);
    }
    OB->changed = 0;
    EXPECT_EQ(run(1024).size(), 1U); // the question, cancelled
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(BoxCommands, VolumeOfClosedSurfaces) {
    const auto volume = [&] {
        const std::string shows = run(1057).front();
        return shows.substr(shows.rfind('|') + 1);
    };
    const std::string open = "4 of their edges are open or run twice the same way";
    // An L of area 3 as ground and roof, four units apart.
    for (const int z : {0, 4}) {
        for (const auto& [x, y] : {std::pair(0, 0), {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}}) {
            OB->addPoint(x, y, z, false);
        }
    }
    addFace({5, 4, 3, 2, 1, 1, 0}); // a corner twice
    addFace({6, 7, 8, 9, 10, 11});
    for (int k = 0; k < 6; ++k) addFace({k, (k + 1) % 6, 6 + (k + 1) % 6, 6 + k});
    shift(0, {1e9, 1e9, 1e9}); // far away it is as large
    EXPECT_EQ(volume(), "12");
    shift(0, {-1e9, -1e9, -1e9});
    reverseFace(OB->faces[2]);
    EXPECT_EQ(run(1057), Log{"message!|the selected faces do not bound a volume|" + open});
    reverseFace(OB->faces[2]);
    command(397); // all of them
    EXPECT_EQ(volume(), "12 (they face inwards)");
    // A cube, all faces to the outside and smaller, within the inside-out prism.
    addCube();
    EXPECT_EQ(volume(), "4 (they face inwards)");
    select({8, 9, 10, 11, 12, 13});
    EXPECT_EQ(volume(), "8");
    OB->faces[8].q = nullptr;
    EXPECT_EQ(volume(), open);
}

} // namespace
} // namespace polyfab::test
