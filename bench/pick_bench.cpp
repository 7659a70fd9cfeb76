// SPDX-License-Identifier: GPL-3.0-or-later
// Picking in both panes of a window of 1920x1000 pixels. The grid lies aslant, so that both panes
// show it. The far grid is a few pixels wide: all of it is near the mouse.
#include "bench/grid.h"
#include "bench/growth.h"
#include "display/picking.h"
#include "display/view.h"
#include "mesh/mesh.h"
#include "mesh/screen_positions.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace polyfab::bench {
namespace {

void showGrid(std::int64_t triangles, double shrink) {
    buildGridMesh(triangles);
    resizeView({1920, 1000});
    const double turn[3][3] = {{0.8, 0, 0.6}, {0, 1, 0}, {-0.6, 0, 0.8}};
    std::copy_n(&turn[0][0], 9, &view.rotation[0][0]);
    fitView(*OB);
    view.scale *= shrink;
    view.offset = {480, 500, 480};
    applyView();
    transformPoints(*OB);
}

/// Picks at places that are scattered over the pane's middle.
template <auto pick>
void pickAt(benchmark::State& state, bool left, double shrink = 1) {
    showGrid(state.range(0), shrink);
    std::mt19937 random(1);
    std::uniform_real_distribution<double> off(-200 * shrink, 200 * shrink);
    for (auto _ : state) {
        benchmark::DoNotOptimize(pick({left, 480 + off(random), 500 + off(random)}));
    }
    showRate(state, "triangles", OB->nf);
}

int point(const PanePlace& place) { return pointAt(*OB, place); }
int edge(const PanePlace& place) { return edgeAt(*OB, place).face; }
int face(const PanePlace& place) { return faceAt(*OB, place); }

template <auto pick>
void inLeftPane(benchmark::State& state) {
    pickAt<pick>(state, true);
}

template <auto pick>
void inRightPane(benchmark::State& state) {
    pickAt<pick>(state, false);
}

template <auto pick>
void farAway(benchmark::State& state) {
    pickAt<pick>(state, true, 1.0 / 256);
}

/// The worst that a file can do.
void faceOfShuffled(benchmark::State& state) {
    showGrid(state.range(0), 1);
    std::mt19937 random(1);
    std::shuffle(OB->faces, OB->faces + OB->nf, random);
    for (auto _ : state) benchmark::DoNotOptimize(face({true, 480, 500}));
    showRate(state, "triangles", OB->nf);
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("point, left pane", inLeftPane<point>, quarter);
    addGrowth("point, right pane", inRightPane<point>, quarter);
    addGrowth("point, far grid", farAway<point>, quarter);
    addGrowth("edge, left pane", inLeftPane<edge>, quarter);
    addGrowth("edge, right pane", inRightPane<edge>, quarter);
    addGrowth("edge, far grid", farAway<edge>, quarter);
    addGrowth("face, left pane", inLeftPane<face>, quarter);
    addGrowth("face, right pane", inRightPane<face>, quarter);
    addGrowth("face, far grid", farAway<face>, quarter);
    addGrowth("face, faces in no order", faceOfShuffled, quarter);
    return runGrowth(argc, argv);
}
