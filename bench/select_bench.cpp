// SPDX-License-Identifier: GPL-3.0-or-later
// Selecting faces through the window's events, from the press to the result, with the step of undo
// and the counts that the status line tells; and the same with the picture that shows it.
#include "bench/grid.h"
#include "bench/growth.h"
#include "display/view.h"
#include "editor/modes/modes.h"
#include "editor/window.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "tests/support/fake_platform.h"

namespace polyfab::bench {
namespace {

void mouse(int x, int y, unsigned buttons) {
    handleEvent({.kind = EventKind::mouse, .x = x, .y = y, .buttons = buttons});
}

void paint() { handleEvent({.kind = EventKind::paint}); }

void command(int id) { handleEvent({.kind = EventKind::command, .command = id}); }

/// The grid as it stands after a read, shown in a window of 1920x1000 pixels.
void prepare(test::FakePlatform& shown, std::int64_t triangles) {
    shown.size = {1920, 1000};
    handleEvent({.kind = EventKind::create});
    buildGridMesh(triangles);
    handleEvent({.kind = EventKind::resize});
    fitView(*OB);
    command(selectByRectangle);
    paint();
    mouse(1, 1, button::left); // so that the first step is taken before the clock starts
    mouse(1, 1, 0);
}

/// Rectangles over a quarter of the left pane, at two places in turn.
void rectangle(benchmark::State& state, unsigned button, bool shows) {
    test::FakePlatform shown;
    prepare(shown, state.range(0));
    int from = 200;
    for (auto _ : state) {
        mouse(from, from, button);
        mouse(from + 480, from + 480, button);
        mouse(from + 480, from + 480, 0);
        if (shows) paint();
        from = 500 - from;
    }
    showRate(state, "triangles", OB->nf);
}

template <unsigned button, bool shows>
void rectangleWith(benchmark::State& state) {
    rectangle(state, button, shows);
}

/// A command on a selection of half of the faces.
template <int id, bool shows>
void runs(benchmark::State& state) {
    test::FakePlatform shown;
    prepare(shown, state.range(0));
    mouse(10, 10, button::left);
    mouse(470, 990, 0);
    for (auto _ : state) {
        command(id);
        if (shows) paint();
    }
    showRate(state, "triangles", OB->nf);
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    using namespace polyfab;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("rectangle, faces inside", rectangleWith<button::left, false>, quarter);
    addGrowth("rectangle, faces touched", rectangleWith<button::right, false>, quarter);
    addGrowth("rectangle, inside, and picture", rectangleWith<button::left, true>, quarter);
    addGrowth("invert the selection", runs<2031, false>, quarter);
    addGrowth("invert the selection, and picture", runs<2031, true>, quarter);
    addGrowth("grow the selection", runs<2032, false>, quarter);
    addGrowth("grow the selection, and picture", runs<2032, true>, quarter);
    addGrowth("shrink the selection", runs<2033, false>, quarter);
    addGrowth("select all connected", runs<2034, false>, quarter);
    return runGrowth(argc, argv);
}
