// SPDX-License-Identifier: GPL-3.0-or-later
// The life of a drag in any mode; what each mode does is in tests/scenarios/transforms.txt.
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
    }
    /// All that a drag may change.
    static std::string everything() {
        std::string text = dump() + (OB->changed ? "changed" : "");
        const auto add = [&](const auto& record) {
            text.append(reinterpret_cast<const char*>(&record), sizeof record);
        };
        add(view.rotation), add(view.scale), add(view.offset), add(box);
        return text;
    }
};

TEST_F(Modes, EdgeHandlingDropsAnEdgeThatIsGone) {
    OB->faces[2].q = nullptr;
    for (const auto& [face, corner] : {std::pair{0, 3}, {6, 0}, {2, 0}, {0, 4}}) {
        workbench.currentEdgeFace = face;
        workbench.currentEdgeCorner = corner;
        command(348);
        EXPECT_EQ(workbench.currentEdgeFace, corner == 3 ? 0 : -1);
    }
}

TEST_F(Modes, EscapePutsEverythingBackAndTheRestOfTheDragDoesNothing) {
    // Some attitude and places that rounding does not leave alone.
    turnView(0, 0.4, true);
    turnView(1, 0.7, true);
    panView({1.1, 2.3, 3.7});
    for (const bool turnsView : {true, false}) {
        turnOptions.view = turnsView;
        for (const int mode : transformModes) {
            command(mode);
            const std::string before = everything();
            for (const unsigned held : {button::left, button::right}) {
                for (const Spot& spot : {Spot{300, 200}, {350, 240}}) mouse(spot, held);
                EXPECT_NE(everything(), before) << mode;
                key(key::escape);
                drag(400, 260, 10, 10, held);
                EXPECT_EQ(everything(), before) << mode;
            }
        }
    }
    command(351);
    drag(300, 200, 50, 50, button::left); // the next drag works
    key(key::escape);                     // nothing runs: nothing to put back
    EXPECT_EQ(OB->changed, 1);
}

TEST_F(Modes, OtherEventsEndADragAndKeepWhatItDid) {
    const Event events[] = {{.kind = EventKind::deactivate},
                            {.kind = EventKind::resize},
                            {.kind = EventKind::command, .command = 352},
                            {.kind = EventKind::drop}};
    for (const Event& event : events) {
        command(351);
        OB->changed = 0;
        for (const int x : {300, 350}) mouse(x, 200, button::left);
        EXPECT_EQ(OB->changed, 0);
        handleEvent(event);
        EXPECT_EQ(OB->changed, 1);
        const std::string then = everything();
        for (const unsigned held : {button::left, 0U}) mouse(400, 200, held);
        key(key::escape); // too late
        EXPECT_EQ(everything(), then);
    }
}

} // namespace
} // namespace polyfab::test
