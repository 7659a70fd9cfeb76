// SPDX-License-Identifier: GPL-3.0-or-later
// A fixture that hands events to the editor's window.
#pragma once

#include "display/box.h"
#include "display/options.h"
#include "display/view.h"
#include "editor/editor_state.h"
#include "editor/modes/modes.h"
#include "editor/modes/transform_modes.h"
#include "editor/window.h"
#include "geometry/affine.h"
#include "mesh/check.h"
#include "tests/support/mesh_fixture.h"
#include "tests/support/near.h"
#include "workbench/state.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace polyfab::test {

/// A file with one triangle.
inline constexpr const char* triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// The mesh as a script sees it.
inline std::string dumpedMesh() {
    std::string text;
    editorProgram().writeDump([&](std::string_view piece) { text += piece; });
    return text;
}

/// A client position.
struct Spot {
    int x, y;
};

/// An empty mesh in a window of 1024 x 512 pixels, upright, at 100 pixels per unit with the origin
/// at (255, 255) of both panes.
class WindowEvents : public MeshTest {
  protected:
    WindowEvents() {
        leavesGroups = true;
        reset();
    }
    ~WindowEvents() override {
        reset();
        view.client = {};
        resetView();
    }

    void reset() {
        emptyMesh();
        resetEditorState();
        turnOptions = TurnOptions();
        displayOptions = DisplayOptions();
        box = Box();
        shown.size = {1024, 512};
        send(EventKind::create);
        resetView();
        view.scale = 100;
        view.offset = {255, 255, 255};
        applyView();
        shown.log.clear();
    }
    /// Starts over with a cube, unaltered, in this mode. Its left pane shows face 1 in front, the
    /// right one face 5.
    void cubeIn(int mode) {
        reset();
        addCube();
        OB->changed = 0;
        command(mode);
        shown.log.clear();
    }

    static void send(EventKind kind) { handleEvent({.kind = kind}); }
    static void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }
    static void down(int code) { handleEvent({.kind = EventKind::keyDown, .key = code}); }
    static void up(int code) { handleEvent({.kind = EventKind::keyUp, .key = code}); }
    static void key(int code) {
        down(code);
        up(code);
    }
    static void wheel(int x, int y, double steps) {
        handleEvent({.kind = EventKind::wheel, .x = x, .y = y, .steps = steps});
    }
    static void mouse(int x, int y, unsigned buttons) {
        handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
    }
    static void mouse(const Spot& spot, unsigned buttons) { mouse(spot.x, spot.y, buttons); }
    /// A drag by so many pixels in two steps, the second of which comes with the release.
    static void drag(int x, int y, int across, int down, unsigned buttons) {
        mouse(x, y, buttons);
        mouse(x + across / 2, y + down / 3, buttons);
        mouse(x + across, y + down, buttons == button::middle ? buttons : 0U);
        mouse(x + across, y + down, 0);
    }
    static void drag(const Spot& from, const Spot& to) {
        drag(from.x, from.y, to.x - from.x, to.y - from.y, button::left);
    }
    static void click(const Spot& spot) { drag(spot, spot); }
    static void drop(const std::string& path) {
        handleEvent({.kind = EventKind::drop, .paths = {path}});
    }
    /// What is shown while the event is handled.
    Log showsAt(const Event& event) {
        shown.log.clear();
        handleEvent(event);
        return shown.log;
    }
    Log showsAt(EventKind kind) { return showsAt({.kind = kind}); }
    Log run(int id) { return showsAt({.kind = EventKind::command, .command = id}); }

    static Vec3 point(int i) { return {OB->points[i].x, OB->points[i].y, OB->points[i].z}; }
    static bool isLive(int f) { return f >= 0 && f < OB->nf && OB->faces[f].q != nullptr; }
    static int liveFaces() {
        int count = 0;
        for (int f = 0; f < OB->nf; ++f) count += isLive(f);
        return count;
    }
    static Numbers selected() {
        Numbers list;
        for (int f = 0; f < OB->nf; ++f) {
            if (OB->faces[f].selected) list.push_back(f);
        }
        return list;
    }
    static void select(const Numbers& faces) {
        for (int f = 0; f < OB->nf; ++f) {
            OB->faces[f].selected = std::count(faces.begin(), faces.end(), f) != 0;
        }
    }
    /// The commands of a menu and of its sub-menus.
    static std::vector<MenuItem> allItems(const std::vector<MenuItem>& items) {
        std::vector<MenuItem> all;
        for (const MenuItem& item : items) {
            if (item.id != 0) all.push_back(item);
            for (const MenuItem& inner : allItems(item.items)) all.push_back(inner);
        }
        return all;
    }
    /// What the menu bar holds.
    std::vector<MenuItem> items() const {
        std::vector<MenuItem> all;
        for (const Menu& menu : shown.bar) {
            for (const MenuItem& item : allItems(menu.items)) all.push_back(item);
        }
        return all;
    }
    static std::string dump() { return dumpedMesh(); }
};

} // namespace polyfab::test
