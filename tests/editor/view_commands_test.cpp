// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/view_commands.h"

#include "mesh/check.h"
#include "tests/editor/window_fixture.h"

#include <algorithm>
#include <cmath>

namespace polyfab::test {
namespace {

class ViewCommands : public WindowEvents {
  protected:
    /// Whether the menu shows a check mark at the command.
    bool checked(int id) {
        for (const Menu& menu : shown.bar) {
            for (const MenuItem& item : menu.items) {
                if (item.id == id) return item.checked;
            }
        }
        return false;
    }
};

/// Six times the volume that the live faces enclose.
double volume() {
    double sum = 0;
    for (const Face* f = OB->faces; f != OB->faces + OB->nf; ++f) {
        for (int k = 1; k + 1 < f->n; ++k) {
            const Point &a = *f->q[0].p, &b = *f->q[k].p, &c = *f->q[k + 1].p;
            sum += a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z)
                   + a.z * (b.x * c.y - b.y * c.x);
        }
    }
    return sum;
}

TEST_F(ViewCommands, MirrorsKeepTheOutsideOutside) {
    struct Row {
        int command;
        const char* answer; ///< null: no question
        double angle;       ///< of the view
        Vec3 seventh;       ///< where the corner (4, 5, 8) comes to lie
    };
    // The cube's middle is (3, 4, 7).
    const Row rows[] = {{409, "x", 0, {2, 5, 8}},
                        {409, "Y", 0, {4, 3, 8}},
                        {409, "z", 0, {4, 5, 6}},
                        {409, "x", std::acos(0), {4, 5, 6}}, // a quarter turn: z is seen across
                        {413, "x", 1, {-4, 5, 8}},
                        {413, "y", 1, {4, -5, 8}},
                        {413, "z", 1, {4, 5, -8}},
                        {1055, nullptr, 1, {4, 8, 5}},
                        {1084, nullptr, 1, {-8, 5, 4}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        emptyMesh();
        addCube();
        for (Point* p = OB->points; p != OB->points + 8; ++p) p->x += 3, p->y += 4, p->z += 7;
        OB->changed = 0;
        resetAttitude();
        turnView(1, row.angle, true);
        if (row.answer != nullptr) shown.dialogAnswers = {{"w"}, {""}, {row.answer}};
        command(row.command);
        EXPECT_TRUE(shown.dialogAnswers.empty());
        expectNear(point(7), row.seventh);
        EXPECT_NEAR(volume(), 48, 1e-9);
        EXPECT_EQ(OB->changed, 1);
        EXPECT_EQ(check(*OB), nullptr);
    }
}

TEST_F(ViewCommands, OnlySelectedFacesAreTurnedOverAndNormalsAreMirrored) {
    addCube();
    OB->addNormal(1, 0, 0);
    for (const int f : {4, 5}) { // left and right side
        for (int k = 0; k < 4; ++k) OB->faces[f].q[k].d = OB->normals;
    }
    for (const int f : {0, 1, 2, 3, 4}) OB->faces[f].selected = 0;
    const Point* const second = OB->faces[4].q[1].p;
    shown.dialogAnswers = {{"x"}};
    command(413);
    EXPECT_EQ(OB->faces[4].q[1].p, second);
    EXPECT_EQ(OB->faces[4].q[0].d->x, 1);
    EXPECT_EQ(OB->faces[5].q[0].d->x, -1);
    EXPECT_EQ(point(0).x, -1); // not of the face that is selected
    EXPECT_EQ(point(1).x, -1);
}

TEST_F(ViewCommands, WithoutAnAnswerOrASelectionNothingHappens) {
    addCube();
    OB->changed = 0;
    const std::string before = editorProgram().dumpJson();
    command(409); // cancelled
    command(413);
    command(291);
    shown.log.clear();
    for (const int id : {409, 413, 1055, 1084}) command(id);
    EXPECT_EQ(std::count(shown.log.begin(), shown.log.end(), "message||no face is selected"), 4);
    command(290);
    EXPECT_EQ(editorProgram().dumpJson(), before);
    EXPECT_EQ(OB->changed, 0);
}

TEST_F(ViewCommands, OneOfViewAndObjectsIsChecked) {
    EXPECT_TRUE(checked(297) && !checked(298) && checked(271));
    command(298);
    command(271);
    EXPECT_TRUE(!checked(297) && checked(298) && !checked(271));
    command(298);
    EXPECT_TRUE(!checked(297) && checked(298));
    command(297);
    EXPECT_TRUE(checked(297) && !checked(298));
}

class Navigation : public WindowEvents {
  protected:
    Navigation() { addCube(); }
    static void wheel(int x, int y, double steps) {
        handleEvent({.kind = EventKind::wheel, .x = x, .y = y, .steps = steps});
    }
};

TEST_F(Navigation, TheWheelZoomsAboutTheMouse) {
    const Vec3 inLeft = projection.toWorld({30, 40, middleOfPanes().z});
    wheel(30, 40, 1);
    EXPECT_DOUBLE_EQ(view.scale, 120);
    expectNear(projection.toWorld({30, 40, middleOfPanes().z}), inLeft);
    const Vec3 inRight = projection.toWorld({middleOfPanes().x, 50, 60});
    wheel(513 + 60, 50, -2.5);
    expectNear(projection.toWorld({middleOfPanes().x, 50, 60}), inRight);
    EXPECT_NEAR(view.scale, 120 / std::pow(1.2, 2.5), 1e-9);
}

TEST_F(Navigation, TheMiddleButtonPansAndWithShiftTurns) {
    const Vec3 before = projection.toScreen({0, 0, 0});
    drag(100, 100, 20, 30, button::middle);
    expectNear(projection.toScreen({0, 0, 0}), {before.x + 20, before.y + 30, before.z});
    drag(600, 100, 20, -30, button::middle);
    expectNear(projection.toScreen({0, 0, 0}), {before.x + 20, before.y, before.z + 20});
    press(key::shift);
    const auto turned = [&](int x, int across, int down) {
        resetAttitude();
        drag(x, 100, across, down, button::middle);
    };
    turned(100, 180, 0); // what faces the viewer follows the mouse
    expectNear(screenAxes()({0, 0, 1}), {1, 0, 0});
    turned(100, 0, 180);
    expectNear(screenAxes()({0, 0, 1}), {0, 1, 0});
    turned(600, 180, 0); // the right pane looks at the object's right side
    expectNear(screenAxes()({1, 0, 0}), {0, 0, 1});
    turned(600, 0, 180);
    expectNear(screenAxes()({1, 0, 0}), {0, 1, 0});
}

TEST_F(Navigation, KeysFitAllOrTheSelectedFaces) {
    OB->addPoint(-1, 3, 0, false);
    addFace({0, 1, 8})->selected = 0;
    shown.paintRequests = 0;
    press(36);
    EXPECT_NEAR(view.scale, 0.88 * 512 / 4, 1e-9);
    expectNear(projection.toWorld(box.left), {-1, 3, 1});
    expectNear(projection.toWorld(box.right), {1, -1, -1});
    for (const int code : {190, 110}) {
        press(36);
        press(code);
        EXPECT_NEAR(view.scale, 0.88 * 511 / 2, 1e-9);
    }
    EXPECT_GT(shown.paintRequests, 0);
    expectNear(projection.toWorld(box.left), {-1, 3, 1}); // the box stays around what it was around
    command(291);
    press(190);
    EXPECT_EQ(shown.windowTitle, "no face is selected");
}

TEST_F(Navigation, ARunningDragIsNotDisturbed) {
    command(351);
    mouse(300, 200, button::left);
    const View before = view;
    wheel(30, 40, 3);
    press(36);
    press(190);
    mouse(300, 200, button::left | button::middle);
    mouse(350, 200, button::left | button::middle);
    mouse(350, 200, button::middle);
    EXPECT_EQ(view.scale, before.scale);
    EXPECT_EQ(view.offset.x, before.offset.x);
    expectNear(point(0), {-0.5, -1, -1});
    mouse(360, 200, button::middle); // only now
    EXPECT_DOUBLE_EQ(view.offset.x, before.offset.x + 10);
}

} // namespace
} // namespace polyfab::test
