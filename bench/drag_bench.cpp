// SPDX-License-Identifier: GPL-3.0-or-later
// Dragging a whole mesh through the window's events: the press, a step with the picture that shows
// it, and the release, in a window of 1920x1000 pixels.
#include "bench/grid.h"
#include "bench/growth.h"
#include "display/box.h"
#include "display/view.h"
#include "editor/modes/modes.h"
#include "editor/modes/transform_modes.h"
#include "editor/window.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "tests/support/fake_platform.h"

namespace polyfab::bench {
namespace {

void mouse(int x, unsigned buttons) {
    handleEvent({.kind = EventKind::mouse, .x = x, .y = 300, .buttons = buttons});
}

void paint() { handleEvent({.kind = EventKind::paint}); }

/// The grid, all selected and shown, in this mode.
void prepare(test::FakePlatform& shown, std::int64_t triangles, int command) {
    shown.size = {1920, 1000};
    handleEvent({.kind = EventKind::create});
    buildGridMesh(triangles);
    handleEvent({.kind = EventKind::resize});
    fitView(*OB);
    fitBox(*OB, false);
    stale.edges = true;
    turnOptions.view = false;
    enterMode(command);
    paint();
}

template <int command>
void dragStep(benchmark::State& state) {
    test::FakePlatform shown;
    prepare(shown, state.range(0), command);
    mouse(300, button::left);
    int x = 300;
    for (auto _ : state) {
        mouse(x = x == 300 ? 340 : 300, button::left);
        paint();
    }
    mouse(300, 0);
    showRate(state, "triangles", OB->nf);
}

void pressAndRelease(benchmark::State& state) {
    test::FakePlatform shown;
    prepare(shown, state.range(0), 364);
    for (auto _ : state) {
        mouse(300, button::left);
        mouse(340, 0);
    }
    showRate(state, "triangles", OB->nf);
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("move objects, a step", dragStep<351>, quarter);
    addGrowth("rotate objects, a step", dragStep<364>, quarter);
    addGrowth("twist, a step", dragStep<1062>, quarter);
    addGrowth("move display, a step", dragStep<352>, quarter);
    addGrowth("press, turn the normals, release", pressAndRelease, quarter);
    return runGrowth(argc, argv);
}
