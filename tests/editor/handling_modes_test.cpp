// SPDX-License-Identifier: GPL-3.0-or-later
// The handling modes and the settable points, driven by mouse and keys. One world unit is 100
// pixels and the origin is at (255, 255) of both panes.
#include "display/options.h"
#include "display/view.h"
#include "editor/drag.h"
#include "editor/modes.h"
#include "editor/state.h"
#include "editor/window.h"
#include "mesh/check.h"
#include "mesh/edges.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace polyfab {
namespace {

constexpr int deleteKey = 46;

struct Spot {
    int x, y;
    Spot operator+(const Spot& by) const { return {x + by.x, y + by.y}; }
};

int pixel(double position) { return static_cast<int>(std::lround(position)); }
Spot left(double x, double y) { return {pixel(255 + 100 * x), pixel(255 - 100 * y)}; }
Spot right(double z, double y) { return {pixel(513 + 255 - 100 * z), pixel(255 - 100 * y)}; }

class HandlingModes : public test::MeshTest {
  protected:
    HandlingModes() { reset(); }
    ~HandlingModes() override {
        resetDrags();
        resetEditorState();
        resetView();
    }

    void reset() {
        test::emptyMesh();
        resetEditorState();
        displayOptions = DisplayOptions();
        view = View();
        view.client = shown.size;
        view.scale = 100;
        view.offset = {255, 255, 255};
        applyView();
        shown.choices.clear();
        shown.log.clear();
    }

    /// A flat mesh of these faces on points at (x, y).
    void flat(const std::vector<std::array<double, 2>>& points,
              const std::vector<std::vector<int>>& faces) {
        reset();
        for (const auto& [x, y] : points) OB->addPoint(x, y, 0, false);
        for (const auto& face : faces) test::addFace(face);
        OB->changed = 0;
    }

    void mouse(const Spot& spot, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = spot.x, .y = spot.y, .buttons = buttons});
    }
    void click(const Spot& spot) { drag(spot, spot); }
    void drag(const Spot& from, const Spot& to) {
        mouse(from, 0);
        mouse(from, button::left);
        mouse(to, button::left);
        mouse(to, 0);
    }
    void hold(int code) { handleEvent({.kind = EventKind::keyDown, .key = code}); }
    void let(int code) { handleEvent({.kind = EventKind::keyUp, .key = code}); }
    void key(int code) {
        hold(code);
        let(code);
    }
    void enter(int command) {
        handleEvent({.kind = EventKind::command, .command = command});
        shown.log.clear();
    }
    static int liveFaces() {
        return static_cast<int>(std::count_if(OB->faces, OB->faces + OB->nf,
                                              [](const Face& face) { return face.q != nullptr; }));
    }
};

TEST_F(HandlingModes, AFaceIsMadeCurrentSelectedAndDeleted) {
    test::addCube();
    enter(349);
    editorState.currentEdgeFace = editorState.currentEdgeCorner = 0;
    struct Row {
        Spot spot;
        int current;
    };
    for (const Row& row : {Row{left(0.5, 0.5), 1}, {right(0.5, 0.5), 5}, {left(2, 0), -1}}) {
        click(row.spot);
        EXPECT_EQ(OB->curface, row.current);
        EXPECT_EQ(editorState.currentEdgeFace, -1);
    }
    mouse(left(0.5, 0.5), button::right);
    mouse(left(0.5, 0.5), 0);
    EXPECT_EQ(OB->curface, -1);

    hold(key::shift);
    for (const int selected : {0, 1, 0}) {
        click(left(0, 0));
        EXPECT_EQ(OB->faces[1].selected, selected);
    }
    key(deleteKey);
    EXPECT_EQ(shown.log.back(), "question||do you want to delete this face?");
    EXPECT_EQ(liveFaces(), 6);
    shown.choices = {Choice::yes};
    OB->changed = 0;
    key(deleteKey);
    EXPECT_EQ(OB->faces[1].q, nullptr);
    EXPECT_EQ(OB->curface, -1);
    EXPECT_EQ(OB->changed, 1);
    shown.log.clear();
    key(deleteKey); // there is no current face any more
    EXPECT_TRUE(shown.log.empty());
    enter(358);
    OB->curface = 0;
    key(deleteKey);
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(HandlingModes, ADragFromPointToPointSplitsTheFaceThatHasBoth) {
    struct Row {
        Spot from, to;
        std::string title;
        int split; ///< the face, or -1
    };
    const Row rows[] = {
        {left(-1, -1), left(1, 1) + Spot{3, 3}, "split face OK", 1},
        {left(1, -1), left(-1, 1), "split face OK", 1},
        {right(-1, -1), right(1, 1), "split face OK", 5},
        {left(-1, -1), left(1, -1), "there is no face to split between these points", -1},
        {left(0, 0), left(1, 1), "start point of drag not found", -1},
        {left(1, 1), left(0, 0), "end point of drag not found", -1},
        {left(1, 1), {512, 100}, "end point of drag not found", -1},
        {left(0, 0), left(0.5, 0), "start point of drag not found", -1},
        {left(1, 1), left(1, 1) + Spot{3, 0}, "start and end of drag are the same point", -1},
        {left(1, 1), left(1, 1) + Spot{2, 2}, "polyfab [] face handling", -1},
    };
    for (const Row& row : rows) {
        reset();
        test::addCube();
        OB->changed = 0;
        enter(349);
        drag(row.from, row.to);
        EXPECT_EQ(shown.windowTitle, row.title);
        EXPECT_EQ(OB->nf, row.split < 0 ? 6 : 7) << row.title;
        EXPECT_EQ(OB->changed, row.split < 0 ? 0 : 1);
        for (int f = 0; f < 6; ++f) EXPECT_EQ(OB->faces[f].n, f == row.split ? 3 : 4);
        EXPECT_EQ(check(*OB), nullptr);
    }
}

TEST_F(HandlingModes, EscapeGivesASplitUpAndSoDoesAPressInAnotherMode) {
    test::addCube();
    enter(349);
    mouse(left(-1, -1), button::left);
    key(key::escape);
    mouse(left(1, 1), 0);
    click(left(-1, -1));
    enter(358);
    mouse(left(-1, -1), button::left);
    enter(349);
    mouse(left(1, 1), 0);
    EXPECT_EQ(OB->nf, 6);
    EXPECT_TRUE(shown.log.empty());
}

TEST_F(HandlingModes, OfSeveralFacesTheUserSaysWhichIsSplit) {
    // Two arrow heads, to the left and to the right, with the line from point 0 to 1 outside both.
    const std::vector<std::array<double, 2>> points = {{0, -1}, {0, 1}, {-1, 0},
                                                       {-2, 0}, {2, 0}, {1, 0}};
    struct Row {
        Spot off; ///< of the end of the drag from point 1
        Choice choice;
        int reversed; ///< face turned over before, -1: none
        std::string title;
        int split;
    };
    const std::string ok = "split face OK";
    const Row rows[] = {
        {{-3, 2}, Choice::yes, -1, ok, 0},
        {{3, 2}, Choice::yes, -1, ok, 1},
        {{3, 2}, Choice::yes, 1, ok, 1},
        {{0, -2}, Choice::yes, -1, "none of these faces is under the mouse", -1},
        {{3, 2}, Choice::no, -1, "not exactly one of these faces faces you", -1},
        {{3, 2}, Choice::no, 1, ok, 0},
        {{-3, 2}, Choice::no, 0, ok, 1},
    };
    for (const bool inLeft : {true, false}) {
        for (const Row& row : rows) {
            flat(points, {{0, 2, 1, 3}, {0, 4, 1, 5}});
            if (!inLeft) {
                for (Point* p = OB->points; p != OB->points + OB->np; ++p) {
                    p->z = -std::exchange(p->x, 0);
                }
            }
            if (row.reversed >= 0) reverseFace(OB->faces[row.reversed]);
            enter(349);
            shown.choices = {row.choice};
            const auto place = inLeft ? left : right;
            drag(place(0, -1), place(0, 1) + row.off);
            EXPECT_NE(std::find(shown.log.begin(), shown.log.end(),
                                "question||split how? (Y = at mouse, N = by orientation)"),
                      shown.log.end());
            EXPECT_EQ(shown.windowTitle, row.title);
            for (int f = 0; f < 2; ++f) EXPECT_EQ(OB->faces[f].n, f == row.split ? 3 : 4);
        }
    }
}

TEST_F(HandlingModes, AnEdgeTellsItsNeighboursAndIsDeletedBetweenTwoFaces) {
    struct Row {
        Spot spot;
        int point; ///< at which the current edge begins, -1: there is none
        std::string title;
        std::string titleOfDelete;
        int live; ///< faces afterwards
    };
    const std::string mode = "polyfab [] edge handling";
    const std::string alone = "there is no adjacent face on this edge";
    const std::string many = "there is more than one adjacent face on this edge";
    const Row rows[] = {
        {left(0, 0.3), 1, mode, mode, 4},
        {left(-1, 0), 3, alone, alone, 5},
        {left(0.5, -1), 1, many, many, 5},
        {left(1, 0), 2, mode, "the two faces on this edge do not run the same way", 5},
        {left(2, 2), -1, mode, mode, 5},
    };
    for (const Row& row : rows) {
        flat({{-1, -1}, {0, -1}, {1, -1}, {-1, 1}, {0, 1}, {1, 1}, {0.5, -2}, {0.5, -2.2}, {2, 0}},
             {{0, 1, 4, 3}, {1, 2, 5, 4}, {2, 1, 6}, {2, 1, 7}, {2, 5, 8}});
        enter(348);
        click(row.spot);
        EXPECT_EQ(shown.windowTitle, row.title);
        const int face = editorState.currentEdgeFace;
        EXPECT_EQ(face < 0, row.point < 0);
        if (face >= 0) {
            const Face& owner = OB->faces[face];
            EXPECT_EQ(indexIn(OB->points, owner.q[editorState.currentEdgeCorner].p), row.point);
        }
        EXPECT_EQ(OB->changed, 0);
        key(deleteKey);
        EXPECT_EQ(shown.windowTitle, row.titleOfDelete);
        EXPECT_EQ(liveFaces(), row.live);
        EXPECT_EQ(OB->changed, row.live < 5 ? 1 : 0);
        EXPECT_EQ(editorState.currentEdgeFace >= 0, row.point >= 0 && row.live == 5);
        EXPECT_EQ(check(*OB), nullptr);
    }
}

TEST_F(HandlingModes, EdgesAndVertexesAreDraggedInThePlaneOfTheirPane) {
    struct Row {
        int mode;
        Spot from, to;
        std::vector<int> points; ///< that move
        Vec3 step;
    };
    const Row rows[] = {
        {353, left(1, 1), left(1.1, 1.2), {7}, {0.1, 0.2, 0}},
        {353, right(1, 1), right(1.1, 1.2), {7}, {0, 0.2, 0.1}},
        {353, left(1, 1), right(1, 1), {7}, {3.13, 0, 0}}, // over to the other pane
        {353, left(1, 1), left(1, 1) + Spot{2, -2}, {}, {}},
        {353, left(2, 1), left(1, 0), {}, {}},
        {348, left(0, 1), left(0.1, 1.2), {6, 7}, {0.1, 0.2, 0}},
        {348, right(0, 1), right(-0.1, 1), {3, 7}, {0, 0, -0.1}},
        {348, left(0, 1), left(0, 1) + Spot{0, 2}, {}, {}},
    };
    for (const Row& row : rows) {
        reset();
        test::addCube();
        OB->changed = 0;
        const std::vector<Point> before(OB->points, OB->points + OB->np);
        enter(row.mode);
        drag(row.from, row.to);
        for (int i = 0; i < OB->np; ++i) {
            const bool moves = std::count(row.points.begin(), row.points.end(), i) != 0;
            const Point& was = before[static_cast<std::size_t>(i)];
            EXPECT_NEAR(OB->points[i].x, was.x + moves * row.step.x, 1e-9);
            EXPECT_NEAR(OB->points[i].y, was.y + moves * row.step.y, 1e-9);
            EXPECT_NEAR(OB->points[i].z, was.z + moves * row.step.z, 1e-9);
        }
        EXPECT_EQ(OB->changed, row.points.empty() ? 0 : 1);
        EXPECT_FALSE(pointDragRuns());
    }
}

TEST_F(HandlingModes, AVertexIsHighlightedAndWeldedByCtrl) {
    const auto square = [&] {
        flat({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}, {{0, 1, 2, 3}});
        enter(353);
    };
    square();
    click(left(1, 1));
    EXPECT_EQ(OB->curvertex, 2);
    EXPECT_EQ(OB->points[2].highlighted, 1);
    click(left(0, 0));
    EXPECT_EQ(OB->curvertex, -1);
    EXPECT_EQ(OB->points[2].highlighted, 0);

    hold(key::ctrl);
    drag(left(1, 1), left(1, -1) + Spot{2, 1});
    EXPECT_EQ(OB->faces[0].n, 3);
    EXPECT_EQ(OB->curvertex, 1);
    EXPECT_EQ(OB->points[1].highlighted, 1);
    EXPECT_EQ(OB->points[1].x, 1); // where it was, not where the mouse was
    EXPECT_EQ(OB->points[1].y, -1);
    EXPECT_EQ(OB->changed, 1);
    EXPECT_EQ(check(*OB), nullptr);

    square();
    hold(key::ctrl);
    drag(left(1, 1), left(0.5, 0.5)); // no vertex there
    EXPECT_EQ(OB->faces[0].n, 4);
    EXPECT_NEAR(OB->points[2].x, 0.5, 1e-9);
    EXPECT_EQ(OB->changed, 1);
}

TEST_F(HandlingModes, AClickedFaceNamesItsGroupOrJoinsTheCurrentOne) {
    test::addCube();
    OB->addGroup("lid");
    OB->faces[1].g = 1;
    OB->curgroup = 0;
    OB->changed = 0;
    enter(350);
    click(left(2, 2));
    EXPECT_TRUE(shown.log.empty());
    click(left(0, 0));
    EXPECT_EQ(OB->curgroup, 1);
    EXPECT_EQ(shown.windowTitle, "current group lid");
    EXPECT_EQ(OB->changed, 0);
    hold(key::ctrl);
    click(left(0, 0)); // it is there
    EXPECT_EQ(OB->changed, 0);
    click(right(0, 0));
    EXPECT_EQ(OB->faces[5].g, 1);
    EXPECT_EQ(shown.windowTitle, "face 6 is now in group lid");
    EXPECT_EQ(OB->changed, 1);
}

TEST_F(HandlingModes, SettablePointsGoOntoTheFaceOrKeepTheirDepth) {
    struct Row {
        std::vector<int> keys;
        Spot spot;
        int set; ///< which point, or -1
        Vec3 position;
    };
    constexpr int ctrl = key::ctrl;
    const Row rows[] = {
        {{ctrl, '1'}, left(0.5, 0.25), 0, {0.5, 0.25, 1}},
        {{ctrl, '2'}, right(0.5, 0.25), 1, {1, 0.25, 0.5}},
        {{ctrl, '1'}, left(-2.2, 0), 0, {-2.2, 0, 2.4}}, // on a sloping face
        {{ctrl, '2'}, left(2, 2), 1, {2, 2, 9}},         // on none
        {{ctrl, '1'}, right(2, 2), 0, {4, 2, 2}},
        {{ctrl}, left(0, 0), -1, {}},
        {{'1'}, left(0, 0), -1, {}},
        {{ctrl, '1'}, {512, 10}, -1, {}}, // between the panes
    };
    for (const Row& row : rows) {
        reset();
        test::addCube();
        for (const auto& [x, y, z] : {Vec3{-1.5, -1, 1}, {-2.5, -1, 3}, {-2, 2, 2}}) {
            OB->addPoint(x, y, z, false);
        }
        test::addFace({8, 9, 10});
        enter(353);
        editorState.settable = {Vec3{4, 5, 6}, Vec3{7, 8, 9}};
        for (const int code : row.keys) hold(code);
        const bool taken = row.set >= 0;
        OB->curvertex = 0;
        OB->changed = 0;
        drag(row.spot, row.spot + Spot{50, 50});
        EXPECT_EQ(OB->curvertex, taken ? 0 : -1); // the mode does not see it
        EXPECT_EQ(OB->changed, 0);
        EXPECT_EQ(std::count(shown.log.begin(), shown.log.end(), "beep"), taken ? 1 : 0);
        std::array<Vec3, 2> expected = {Vec3{4, 5, 6}, Vec3{7, 8, 9}};
        if (taken) expected[static_cast<std::size_t>(row.set)] = row.position;
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_NEAR(editorState.settable[i].x, expected[i].x, 1e-9);
            EXPECT_NEAR(editorState.settable[i].y, expected[i].y, 1e-9);
            EXPECT_NEAR(editorState.settable[i].z, expected[i].z, 1e-9);
        }
    }
}

TEST_F(HandlingModes, NoChainOfActionsHarmsTheMesh) {
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    int splits = 0;
    int fewest = 6;
    const auto spot = [&]() -> Spot {
        if (stale.points) transformPoints(*OB);
        const Point& p = OB->points[below(OB->np)];
        const bool inLeft = below(2) != 0;
        const double x = inLeft ? p.sx : p.sz + 513;
        return Spot{static_cast<int>(x), static_cast<int>(p.sy)} + Spot{below(9) - 4, below(9) - 4};
    };
    const auto middle = [](const Spot& a, const Spot& b) -> Spot {
        return {(a.x + b.x) / 2, (a.y + b.y) / 2};
    };
    for (int round = 0; round < 60; ++round) {
        reset();
        test::addCube();
        for (int step = 0; step < 60; ++step) {
            constexpr std::array modes = {348, 349, 349, 350, 353};
            if (below(3) == 0) enter(modes[static_cast<std::size_t>(below(5))]);
            for (const int code : {key::ctrl, key::shift}) {
                below(2) ? hold(code) : let(code);
            }
            shown.choices = {below(2) ? Choice::yes : Choice::no};
            shown.windowTitle.clear();
            const Spot a = spot();
            const Spot b = spot();
            mouse(below(3) ? a : middle(a, b), button::left);
            if (below(8) == 0) key(key::escape);
            mouse(b, below(4) ? button::left : 3U);
            mouse(below(4) ? b : spot(), 0);
            splits += shown.windowTitle == "split face OK";
            if (below(6) == 0) key(deleteKey);
            ASSERT_EQ(check(*OB), nullptr);
            const auto isLive = [](int f) { return f < OB->nf && OB->faces[f].q != nullptr; };
            ASSERT_TRUE(OB->curface < 0 || isLive(OB->curface));
            ASSERT_TRUE(OB->curvertex < OB->np);
            const int edgeFace = editorState.currentEdgeFace;
            ASSERT_TRUE(
                edgeFace < 0
                || (isLive(edgeFace) && editorState.currentEdgeCorner < OB->faces[edgeFace].n));
            ASSERT_FALSE(pointDragRuns());
        }
        fewest = std::min(fewest, liveFaces());
    }
    EXPECT_GT(splits, 60);
    EXPECT_LT(fewest, 4);
}

} // namespace
} // namespace polyfab
