// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/box.h"
#include "display/view.h"
#include "editor/commands.h"
#include "editor/state.h"
#include "mesh/edges.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace polyfab {
namespace {

using Log = std::vector<std::string>;

class BoxCommands : public test::MeshTest {
  protected:
    BoxCommands() {
        resetEditorState();
        box = Box();
        resizeView({801, 400});
        resetView(); // a world unit is 200 pixels, its origin at pixel 199.5
    }
    ~BoxCommands() override {
        resetEditorState();
        box = Box();
    }

    void select(const std::vector<int>& faces) {
        for (int f = 0; f < OB->nf; ++f) {
            OB->faces[f].selected = std::count(faces.begin(), faces.end(), f) != 0;
        }
    }
    std::vector<int> selected() const {
        std::vector<int> list;
        for (int f = 0; f < OB->nf; ++f) {
            if (OB->faces[f].selected) list.push_back(f);
        }
        return list;
    }
    /// What the command shows.
    Log run(int command) {
        shown.log.clear();
        runCommand(command);
        return shown.log;
    }
    /// Turns the view about y.
    void turnView(double radians = 0.6) {
        const double c = std::cos(radians);
        const double s = std::sin(radians);
        const double turn[3][3] = {{c, 0, s}, {0, 1, 0}, {-s, 0, c}};
        std::copy_n(&turn[0][0], 9, &view.rotation[0][0]);
        applyView();
    }
};

TEST_F(BoxCommands, SelectingInAndOutOfTheBoxAndByDirection) {
    test::addCube(); // faces z = -1, z = 1, y = -1, y = 1, x = -1, x = 1
    test::addCube();
    OB->faces[5].q = nullptr;
    for (int i = 8; i < 16; ++i) OB->points[i].x += 4;
    fitBox(*OB, false);
    // That takes the second cube out, and of the first one all that reaches up to y = 1.
    box.right.x = 199.5 + 200;
    box.left.y += 1;
    struct Row {
        int command;
        std::vector<int> before, after;
    };
    const Row rows[] = {
        {292, {0, 7}, {0, 2, 7}},
        {293, {0, 2, 3, 7}, {0, 3, 7}},
        {294, {0}, {0, 1, 3, 4, 6, 7, 8, 9, 10, 11}},
        {295, {0, 2, 3, 7}, {2}},
        {325, {0, 1, 2, 6, 7, 8}, {1, 2, 7, 8}}, // z = -1 is seen from behind
        {326, {0, 1, 2, 6, 7, 8}, {0, 2, 6, 8}},
    };
    for (const Row& row : rows) {
        select(row.before);
        stale.points = true;
        stale.edges = false;
        EXPECT_EQ(run(row.command), Log());
        EXPECT_EQ(selected(), row.after) << row.command;
        EXPECT_TRUE(stale.edges);
    }
}

TEST_F(BoxCommands, SizeAndRangeAreInWorldUnits) {
    test::addCube();
    for (int i = 0; i < 8; ++i) {
        OB->points[i].x = OB->points[i].x * 1.5 + 1.5; // 0 to 3
        OB->points[i].y = 0;
    }
    fitView(*OB);
    fitBox(*OB, false);
    std::swap(box.left.x, box.right.x);
    EXPECT_EQ(run(1058), Log{"message|absolute size of the box|dx=3, dy=0, dz=2"});
    EXPECT_EQ(run(1082), Log{"message|absolute range of the box|x: 0 to 3\ny: 0 to 0\nz: -1 to 1"});
    resizeView({333, 777}); // whose rounding shows in no figure
    EXPECT_EQ(run(1058), Log{"message|absolute size of the box|dx=3, dy=0, dz=2"});
    EXPECT_EQ(run(1082), Log{"message|absolute range of the box|x: 0 to 3\ny: 0 to 0\nz: -1 to 1"});
    turnView(M_PI / 2);                           // screen x shows z
    for (int width = 300; width < 340; ++width) { // some have rounding where there should be 0
        resizeView({width, 200});
        fitView(*OB);
        fitBox(*OB, false);
        EXPECT_EQ(run(1058), Log{"message|absolute size of the box|dx=2, dy=0, dz=3"});
        EXPECT_EQ(run(1082),
                  Log{"message|absolute range of the box|x: 0 to 3\ny: 0 to 0\nz: -1 to 1"});
    }
}

TEST_F(BoxCommands, TheBoxIsFittedToTheSelectedFaces) {
    test::addCube();
    select({1});
    stale.picture = false;
    EXPECT_EQ(run(2003), Log());
    EXPECT_TRUE(stale.picture);
    EXPECT_EQ(run(1082),
              Log{"message|absolute range of the box|x: -1 to 1\ny: -1 to 1\nz: 1 to 1"});
    select({});
    EXPECT_EQ(run(2003), Log{"message||no face is selected"});
    EXPECT_EQ(std::max(box.left.z, box.right.z), 199.5 - 200);
}

TEST_F(BoxCommands, CenteringMovesTheSelectedFacesAndTheBox) {
    struct Row {
        const char* answer;
        double x, y, z; ///< where the cube's middle comes to lie
    };
    const Row rows[] = {{"x", 0, 5, 7}, {"Y", 3, 0, 7}, {"zx", 0, 5, 0}, {"xYz", 0, 0, 0}};
    turnView();
    for (const Row& row : rows) {
        test::emptyMesh();
        test::addCube();
        test::addCube();
        for (int i = 0; i < 8; ++i) {
            OB->points[i].x += 3;
            OB->points[i].y += 5;
            OB->points[i].z += 7;
        }
        select({0, 1}); // all points of the first cube
        fitBox(*OB, true);
        OB->changed = 0;
        stale.points = false;
        shown.dialogAnswers = {{"w"}, {""}, {row.answer}};
        run(1024);
        EXPECT_TRUE(shown.dialogAnswers.empty());
        for (int i = 0; i < 16; ++i) {
            const Point& p = OB->points[i];
            const auto side = [i](int bit) { return (i & bit) != 0 ? 1 : -1; };
            const bool moved = i < 8;
            EXPECT_NEAR(p.x, side(1) + (moved ? row.x : 0), 1e-12) << row.answer;
            EXPECT_NEAR(p.y, side(2) + (moved ? row.y : 0), 1e-12) << row.answer;
            EXPECT_NEAR(p.z, side(4) + (moved ? row.z : 0), 1e-12) << row.answer;
        }
        EXPECT_EQ(OB->changed, 1);
        EXPECT_TRUE(stale.points);
        transformPoints(*OB);
        EXPECT_TRUE(inBox(OB->faces[0]) && inBox(OB->faces[1])) << row.answer;
    }
    OB->changed = 0;
    EXPECT_EQ(run(1024).size(), 1U); // the question, cancelled
    select({});
    EXPECT_EQ(run(1024), Log{"message||no face is selected"});
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(BoxCommands, VolumeOfClosedSurfaces) {
    const std::string caption = "message|absolute volume bounded by the selected faces|";
    const auto openEdges = [](int count) {
        return Log{"message!|the selected faces do not bound a volume|" + std::to_string(count)
                   + " of their edges are open or run twice the same way"};
    };
    EXPECT_EQ(run(1057), Log{"message||no face is selected"});
    test::addCube();
    EXPECT_EQ(run(1057), Log{caption + "8"});
    const auto shift = [](double way) {
        for (int i = 0; i < 8; ++i) {
            OB->points[i].x += way;
            OB->points[i].y += way;
            OB->points[i].z += way;
        }
    };
    shift(1e9); // far away it is as large
    EXPECT_EQ(run(1057), Log{caption + "8"});
    shift(-1e9);
    OB->faces[0].q = nullptr;
    OB->faces[0] = *test::addFace({0, 2, 2, 3, 1}); // a corner twice
    OB->faces[--OB->nf].q = nullptr;
    EXPECT_EQ(run(1057), Log{caption + "8"});
    select({0, 1, 2, 3, 4});
    EXPECT_EQ(run(1057), openEdges(4));
    select({0, 1, 2, 3, 4, 5});
    reverseFace(OB->faces[2]);
    EXPECT_EQ(run(1057), openEdges(4));
    for (int f = 0; f < 6; ++f) {
        if (f != 2) reverseFace(OB->faces[f]);
    }
    EXPECT_EQ(run(1057), Log{caption + "8 (they face inwards)"});
    // A second cube, all faces to the outside and smaller, beside the inside-out one.
    test::addCube();
    for (int i = 8; i < 16; ++i) OB->points[i].x /= 4;
    EXPECT_EQ(run(1057), Log{caption + "6 (they face inwards)"});
    select({6, 7, 8, 9, 10, 11});
    EXPECT_EQ(run(1057), Log{caption + "2"});
    OB->faces[6].q = nullptr;
    EXPECT_EQ(run(1057), openEdges(4));
}

TEST_F(BoxCommands, VolumeOfReEntrantPolygonsIsThatOfThePrism) {
    // An L of area 3 as ground and roof, four units apart, and turned askew.
    const double ground[6][2] = {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    turnView();
    for (const double height : {0.0, 4.0}) {
        for (const auto& [x, y] : ground) {
            const Vec3 at = projection.toScreen({x, y, height});
            OB->addPoint(at.x / view.scale, at.y / view.scale, at.z / view.scale, false);
        }
    }
    test::addFace({5, 4, 3, 2, 1, 0});
    test::addFace({6, 7, 8, 9, 10, 11});
    for (int k = 0; k < 6; ++k) {
        const int next = (k + 1) % 6;
        test::addFace({k, next, 6 + next, 6 + k});
    }
    EXPECT_EQ(run(1057), Log{"message|absolute volume bounded by the selected faces|12"});
}

} // namespace
} // namespace polyfab
