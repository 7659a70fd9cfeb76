// SPDX-License-Identifier: GPL-3.0-or-later
// The life of a drag, whatever the mode.
#include "editor/modes.h"

#include "tests/editor/window_fixture.h"

namespace polyfab::test {
namespace {

constexpr int transformModes[] = {351, 352, 357, 359, 362,  363,  364, 365,
                                  366, 367, 368, 369, 1062, 1063, 1064};

class Modes : public WindowEvents {
  protected:
    Modes() {
        addCube();
        OB->addNormal(0, 1, 0);
        for (int k = 0; k < 4; ++k) OB->faces[0].q[k].d = OB->normals;
        box = {{200, 201, 202}, {303, 304, 305}};
        OB->changed = 0;
        // Some attitude and places that rounding does not leave alone.
        turnView(0, 0.4, true);
        turnView(1, 0.7, true);
        panView({1.1, 2.3, 3.7});
    }
    /// All that a drag may change.
    static std::string everything() {
        std::string text = editorProgram().dumpJson() + (OB->changed ? "changed" : "");
        const auto add = [&](const auto& record) {
            text.append(reinterpret_cast<const char*>(&record), sizeof record);
        };
        add(view.rotation);
        add(view.scale);
        add(view.offset);
        add(box);
        return text;
    }
};

TEST_F(Modes, EscapePutsEverythingBackAndTheRestOfTheDragDoesNothing) {
    for (const bool turnsView : {true, false}) {
        turnOptions.view = turnsView;
        for (const int mode : transformModes) {
            SCOPED_TRACE(mode);
            command(mode);
            const std::string before = everything();
            for (const unsigned held : {button::left, button::right}) {
                mouse(300, 200, held);
                mouse(350, 240, held);
                EXPECT_NE(everything(), before);
                press(key::escape);
                release(key::escape);
                EXPECT_EQ(everything(), before);
                mouse(400, 260, held);
                mouse(410, 270, 0);
                EXPECT_EQ(everything(), before);
            }
        }
    }
    command(351);
    drag(300, 200, 50, 50, button::left); // the next drag works
    EXPECT_EQ(OB->changed, 1);
    press(key::escape); // nothing runs: nothing to put back
    EXPECT_EQ(OB->changed, 1);
}

TEST_F(Modes, OtherEventsEndADragAndKeepWhatItDid) {
    const Event events[] = {{.kind = EventKind::deactivate},
                            {.kind = EventKind::resize},
                            {.kind = EventKind::command, .command = 260},
                            {.kind = EventKind::command, .command = 352},
                            {.kind = EventKind::drop}};
    for (const Event& event : events) {
        command(351);
        OB->changed = 0;
        mouse(300, 200, button::left);
        mouse(350, 200, button::left);
        const double x = OB->points[0].x;
        EXPECT_EQ(OB->changed, 0);
        handleEvent(event);
        EXPECT_EQ(OB->changed, 1);
        const View then = view;
        mouse(400, 200, button::left);
        mouse(400, 200, 0);
        EXPECT_EQ(OB->points[0].x, x);
        EXPECT_EQ(view.offset.x, then.offset.x);
        press(key::escape); // too late
        release(key::escape);
        EXPECT_EQ(OB->points[0].x, x);
    }
}

TEST_F(Modes, ASecondButtonJoinsTheDrag) {
    resetAttitude();
    command(351);
    const Vec3 before = point(0);
    mouse(300, 200, button::left);
    mouse(310, 200, button::left);
    mouse(310, 200, button::left | button::right);
    mouse(330, 200, button::left | button::right);
    mouse(330, 200, button::left);
    mouse(370, 200, button::left);
    mouse(370, 200, 0);
    expectNear(point(0), {before.x + 0.5, before.y, before.z - 0.2});
}

} // namespace
} // namespace polyfab::test
