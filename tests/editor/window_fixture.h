// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture that hands events to the editor's window.
#pragma once

#include "display/affine.h"
#include "display/box.h"
#include "display/view.h"
#include "editor/state.h"
#include "editor/transform_modes.h"
#include "editor/window.h"
#include "tests/support/mesh_fixture.h"

namespace polyfab::test {

inline void expectNear(const Vec3& a, const Vec3& b, double tolerance = 1e-12) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(along(a, axis), along(b, axis), tolerance) << "xyz"[axis];
    }
}

/// A window of 1024 x 512 pixels, upright, at 100 pixels per unit.
class WindowEvents : public MeshTest {
  protected:
    WindowEvents() {
        resetAll();
        handleEvent({.kind = EventKind::create});
        resetView();
        view.scale = 100;
        applyView();
        shown.log.clear();
    }
    ~WindowEvents() override {
        resetAll();
        view.client = {};
        resetView();
    }

    static void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }
    static void press(int code) { handleEvent({.kind = EventKind::keyDown, .key = code}); }
    static void release(int code) { handleEvent({.kind = EventKind::keyUp, .key = code}); }
    static void mouse(int x, int y, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
    }
    /// A drag by so many pixels in two steps.
    static void drag(int x, int y, int across, int down, unsigned buttons) {
        mouse(x, y, buttons);
        mouse(x + across / 2, y + down / 3, buttons);
        mouse(x + across, y + down, buttons);
        mouse(x + across, y + down, 0);
    }
    static Vec3 point(int i) { return {OB->points[i].x, OB->points[i].y, OB->points[i].z}; }

  private:
    static void resetAll() {
        resetEditorState();
        turnOptions = TurnOptions();
        box = Box();
    }
};

} // namespace polyfab::test
