// SPDX-License-Identifier: GPL-3.0-or-later
// The handling modes and the settable points, driven by mouse and keys.
#include "mesh/edges.h"
#include "tests/editor/window_fixture.h"

#include <utility>

namespace polyfab::test {
namespace {

constexpr int deleteKey = key::del;

int pixel(double position) { return static_cast<int>(std::lround(position)); }
Spot left(double x, double y) { return {pixel(255 + 100 * x), pixel(255 - 100 * y)}; }
Spot right(double z, double y) { return {pixel(513 + 255 - 100 * z), pixel(255 - 100 * y)}; }

class HandlingModes : public WindowEvents {
  protected:
    /// Starts over with a flat mesh of these faces on points at (x, y).
    void flat(const std::vector<std::array<double, 2>>& points, const std::vector<Numbers>& faces) {
        reset();
        for (const auto& [x, y] : points) OB->addPoint(x, y, 0, false);
        for (const Numbers& face : faces) addFace(face);
        OB->changed = 0;
    }
};

TEST_F(HandlingModes, AFaceIsMadeCurrentSelectedAndDeleted) {
    cubeIn(349);
    workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
    for (const auto& [spot, current] :
         {std::pair(right(0, 0), 5), {left(2, 0), -1}, {left(0, 0), 1}}) {
        click(spot);
        EXPECT_EQ(OB->curface, current);
    }
    EXPECT_EQ(workbench.currentEdgeFace, -1);
    down(key::shift);
    for (const int selected : {0, 1, 0}) {
        click(left(0, 0));
        EXPECT_EQ(OB->faces[1].selected, selected);
    }
    for (const Choice choice : {Choice::no, Choice::yes}) {
        EXPECT_TRUE(isLive(1) && OB->changed == 0);
        shown.choices = {choice};
        key(deleteKey);
        EXPECT_EQ(shown.log.back(), "question||do you want to delete this face?");
    }
    EXPECT_TRUE(!isLive(1) && OB->curface == -1 && OB->changed == 1);
    shown.choices = {Choice::yes};
    key(deleteKey); // there is no current face any more
    OB->curface = 0;
    command(358);
    key(deleteKey);
    EXPECT_EQ(liveFaces(), 5);
}

TEST_F(HandlingModes, ADragFromPointToPointSplitsTheFaceThatHasBoth) {
    const auto expect = [&](const Spot& from, const Spot& to, const char* title, int split = -1) {
        cubeIn(349);
        shown.choices = {Choice::yes};
        drag(from, to);
        EXPECT_EQ(shown.choices.size(), 1U); // there was no question
        EXPECT_EQ(shown.windowTitle, title);
        EXPECT_EQ(OB->changed, split < 0 ? 0 : 1);
        for (int f = 0; f < 6; ++f) EXPECT_EQ(OB->faces[f].n, f == split ? 3 : 4);
    };
    const Spot corner = left(1, 1);
    expect(left(-1, -1), corner + Spot{3, 3}, "split face OK", 1);
    expect(right(-1, -1), right(1, 1), "split face OK", 5);
    expect(left(-1, -1), left(1, -1), "there is no face to split between these points");
    expect(left(0, 0), corner, "start point of drag not found");
    expect(corner, {512, 100}, "end point of drag not found");
    expect(corner, corner + Spot{3, 0}, "start and end of drag are the same point");
    expect(corner, corner + Spot{2, 2}, "polyfab [] face handling");
    // Escape gives it up, and so does another mode.
    for (const bool escapes : {true, false}) {
        cubeIn(escapes ? 349 : 358);
        mouse(left(-1, -1), button::left);
        escapes ? key(key::escape) : command(349);
        mouse(left(1, 1), 0);
        EXPECT_EQ(OB->nf, 6);
    }
}

TEST_F(HandlingModes, OfSeveralFacesTheUserSaysWhichIsSplit) {
    // `off` of point 1 the drag from point 0 ends; face `reversed` is turned over before.
    const auto expect = [&](const Spot& off, Choice choice, int reversed, const char* title,
                            int split) {
        for (const auto& place : {left, right}) {
            // Two arrow heads, to the left and to the right; the line from point 0 to 1 is outside.
            flat({{0, -1}, {0, 1}, {-1, 0}, {-2, 0}, {2, 0}, {1, 0}}, {{0, 2, 1, 3}, {0, 4, 1, 5}});
            if (place == right) turnView(1, -M_PI / 2, true);
            if (reversed >= 0) reverseFace(OB->faces[reversed]);
            command(349);
            shown.choices = {choice};
            drag(place(0, -1), place(0, 1) + off);
            EXPECT_TRUE(shown.choices.empty());
            EXPECT_EQ(shown.windowTitle, title);
            for (int f = 0; f < 2; ++f) EXPECT_EQ(OB->faces[f].n, f == split ? 3 : 4);
        }
    };
    expect({-3, 2}, Choice::yes, -1, "split face OK", 0);
    expect({3, 2}, Choice::yes, 1, "split face OK", 1);
    expect({0, -2}, Choice::yes, -1, "none of these faces is under the mouse", -1);
    expect({3, 2}, Choice::no, -1, "not exactly one of these faces faces you", -1);
    expect({3, 2}, Choice::no, 1, "split face OK", 0);
}

TEST_F(HandlingModes, AnEdgeTellsItsNeighboursAndIsDeletedBetweenTwoFaces) {
    // `point` begins the current edge; the titles show after the click and after the delete.
    const auto expect = [&](const Spot& spot, int point, const std::string& clicked,
                            const std::string& deleted, int live = 5) {
        flat({{-1, -1}, {0, -1}, {1, -1}, {-1, 1}, {0, 1}, {1, 1}, {0.5, -2}, {0.5, -2.2}, {2, 0}},
             {{0, 1, 4, 3}, {1, 2, 5, 4}, {2, 1, 6}, {2, 1, 7}, {2, 5, 8}});
        command(348);
        click(spot);
        EXPECT_EQ(shown.windowTitle, clicked);
        const int face = workbench.currentEdgeFace;
        const int corner = workbench.currentEdgeCorner;
        EXPECT_EQ(face < 0 ? -1 : indexIn(OB->points, OB->faces[face].q[corner].p), point);
        key(deleteKey);
        EXPECT_EQ(shown.windowTitle, deleted);
        EXPECT_EQ(liveFaces(), live);
        EXPECT_EQ(OB->changed, live < 5 ? 1 : 0);
        EXPECT_EQ(workbench.currentEdgeFace, live < 5 ? -1 : face);
    };
    const std::string mode = "polyfab [] edge handling";
    const std::string no = "there is no adjacent face on this edge";
    const std::string many = "there is more than one adjacent face on this edge";
    expect(left(0, 0.3), 1, mode, mode, 4);
    expect(left(-1, 0), 3, no, no);
    expect(left(0.5, -1), 1, many, many);
    expect(left(1, 0), 2, mode, "the two faces on this edge do not run the same way");
    expect(left(2, 2), -1, mode, mode);
}

TEST_F(HandlingModes, EdgesAndVertexesAreDraggedInThePlaneOfTheirPane) {
    const auto expect = [&](int mode, const Spot& from, const Spot& to, const Numbers& moved,
                            const Vec3& step) {
        cubeIn(mode);
        drag(from, to);
        for (int i = 0; i < 8; ++i) {
            const int steps = std::count(moved.begin(), moved.end(), i) != 0;
            expectNear(point(i),
                       {(i & 1 ? 1 : -1) + steps * step.x, (i & 2 ? 1 : -1) + steps * step.y,
                        (i & 4 ? 1 : -1) + steps * step.z});
        }
        EXPECT_EQ(OB->changed, moved.empty() ? 0 : 1);
    };
    expect(353, right(1, 1), right(1.1, 1.2), {7}, {0, 0.2, 0.1});
    expect(353, left(1, 1), right(1, 1), {7}, {3.13, 0, 0}); // over to the other pane
    expect(353, left(1, 1), left(1, 1) + Spot{2, -2}, {}, {});
    expect(353, left(2, 1), left(1, 0), {}, {});
    expect(348, left(0, 1), left(0.1, 1.2), {6, 7}, {0.1, 0.2, 0});
}

TEST_F(HandlingModes, AVertexIsHighlightedAndWeldedByCtrl) {
    const auto dragInSquare = [&](const Spot& to) {
        flat({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}, {{0, 1, 2, 3}});
        command(353);
        click(left(1, 1));
        EXPECT_TRUE(OB->curvertex == 2 && OB->points[2].highlighted == 1);
        click(left(0, 0));
        EXPECT_TRUE(OB->curvertex == -1 && OB->points[2].highlighted == 0);
        down(key::ctrl);
        workbench.currentEdgeFace = workbench.currentEdgeCorner = 0;
        drag(left(1, 1), to);
        EXPECT_EQ(OB->changed, 1);
    };
    dragInSquare(left(1, -1) + Spot{2, 1});
    EXPECT_EQ(OB->faces[0].n, 3);
    EXPECT_EQ(shown.windowTitle, "welded onto vertex 2");
    EXPECT_EQ(workbench.currentEdgeFace, -1);
    EXPECT_TRUE(OB->curvertex == 1 && OB->points[1].highlighted == 1);
    expectNear(point(1), {1, -1, 0}, 0); // where it was, not where the mouse was
    dragInSquare(left(0.5, 0.5));        // no vertex there
    EXPECT_EQ(OB->faces[0].n, 4);
    expectNear(point(2), {0.5, 0.5, 0});
}

TEST_F(HandlingModes, AClickedFaceNamesItsGroupOrJoinsTheCurrentOne) {
    cubeIn(350);
    OB->addGroup("lid");
    OB->faces[1].g = 1;
    OB->curgroup = OB->changed = 0;
    for (const Spot& spot : {left(0, 0), left(2, 2)}) click(spot);
    EXPECT_EQ(OB->curgroup, 1);
    EXPECT_EQ(shown.windowTitle, "current group lid");
    down(key::ctrl);
    click(left(0, 0)); // it is there
    EXPECT_EQ(OB->changed, 0);
    click(right(0, 0));
    EXPECT_EQ(shown.windowTitle, "face 6 is now in group lid");
    EXPECT_TRUE(OB->faces[5].g == 1 && OB->changed == 1);
}

TEST_F(HandlingModes, SettablePointsGoOntoTheFaceOrKeepTheirDepth) {
    cubeIn(353);
    for (const auto& [x, y, z] : {Vec3{-1.5, -1, 1}, {-2.5, -1, 3}, {-2, 2, 5}}) {
        OB->addPoint(x, y, z, false);
    }
    addFace({8, 9, 10}); // which slopes
    const Vec3 first{4, 5, 6}, second{7, 8, 9};
    const auto expect = [&](const Numbers& keys, const Spot& spot, const Vec3& one,
                            const Vec3& two) {
        workbench.settable = {first, second};
        workbench.keys = {};
        for (const int code : keys) down(code);
        OB->curvertex = 0;
        shown.log.clear();
        drag(spot, spot + Spot{50, 50});
        expectNear(workbench.settable[0], one, 1e-9);
        expectNear(workbench.settable[1], two, 1e-9);
        const bool sets = shown.log == Log{"beep"};
        EXPECT_EQ(OB->curvertex, sets ? 0 : -1); // the mode does not see what sets a point
        return sets;
    };
    constexpr int ctrl = key::ctrl;
    EXPECT_TRUE(expect({ctrl, '2'}, right(0.5, 0.25), first, {1, 0.25, 0.5}));
    EXPECT_TRUE(expect({ctrl, '1'}, left(-2.2, 0.4), {-2.2, 0.4, 3.8}, second));
    EXPECT_TRUE(expect({ctrl, '2'}, left(2, 2), first, {2, 2, 9})); // no face there
    EXPECT_FALSE(expect({ctrl}, left(0, 0), first, second));
    EXPECT_FALSE(expect({'1'}, left(0, 0), first, second));
    EXPECT_FALSE(expect({ctrl, '1'}, {512, 10}, first, second)); // between the panes
}

} // namespace
} // namespace polyfab::test
