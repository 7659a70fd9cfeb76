// SPDX-License-Identifier: GPL-3.0-or-later
// Drawing the mesh in both panes of a window of 1920x1000 pixels, and the steps that it takes. The
// shuffled grid has its points and faces in random order: the worst that a file can do.
#include "bench/grid.h"
#include "bench/growth.h"
#include "display/edge_list.h"
#include "display/options.h"
#include "display/view.h"
#include "display/wireframe.h"
#include "mesh/mesh.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"

namespace polyfab::bench {
namespace {

constexpr Size client{1920, 1000};

void showGrid(std::int64_t triangles) {
    buildGridMesh(triangles);
    resizeView(client);
    fitView(*OB);
    stale = Stale();
}

void transform(benchmark::State& state) {
    showGrid(state.range(0));
    for (auto _ : state) transformPoints(*OB);
    showRate(state, "triangles", OB->nf);
}

void edges(benchmark::State& state) {
    showGrid(state.range(0));
    for (auto _ : state) {
        DrawnEdges list;
        listEdges(*OB, list);
        benchmark::DoNotOptimize(list.other.data());
    }
    showRate(state, "triangles", OB->nf);
}

/// One picture after another, each with every point transformed anew.
void drawAgain(benchmark::State& state, bool edgesToo) {
    for (auto _ : state) {
        stale.points = true;
        stale.edges |= edgesToo;
        benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    }
    showRate(state, "triangles", OB->nf);
}

void redraw(benchmark::State& state) {
    showGrid(state.range(0));
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    drawAgain(state, false);
}

void redrawUnselected(benchmark::State& state) {
    showGrid(state.range(0));
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = 0;
    stale.edges = true;
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    drawAgain(state, false);
}

/// Which edges are hidden is found anew with each picture.
void redrawHidden(benchmark::State& state) {
    showGrid(state.range(0));
    displayOptions.hideFacingAway = true;
    drawAgain(state, false);
    displayOptions = {};
}

void redrawShuffled(benchmark::State& state) {
    showGrid(state.range(0));
    shuffleMesh(*OB);
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    drawAgain(state, false);
}

/// A small piece of the mesh fills the window; all the rest is far beside it.
void redrawNear(benchmark::State& state) {
    showGrid(state.range(0));
    zoomView(1000, middleOfPanes());
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    drawAgain(state, false);
}

template <bool DisplayOptions::*option>
void redrawWith(benchmark::State& state) {
    displayOptions.*option = true;
    redraw(state);
    displayOptions = {};
}

void redrawEdited(benchmark::State& state) {
    showGrid(state.range(0));
    drawAgain(state, true);
}

void staticPicture(benchmark::State& state) {
    showGrid(state.range(0));
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    for (auto _ : state) benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("transform all points", transform, quarter);
    addGrowth("list the edges", edges, quarter);
    addGrowth("redraw", redraw, quarter);
    addGrowth("redraw, all faces unselected", redrawUnselected, quarter);
    addGrowth("redraw, faces that face away hidden", redrawHidden, quarter);
    addGrowth("redraw, shuffled mesh", redrawShuffled, quarter);
    addGrowth("redraw, seen from very near", redrawNear, quarter);
    addGrowth("redraw with vertexes", redrawWith<&polyfab::DisplayOptions::vertexes>, quarter);
    addGrowth("redraw with normals", redrawWith<&polyfab::DisplayOptions::normals>, quarter);
    addGrowth("redraw after an edit", redrawEdited, quarter);
    addGrowth("picture up to date", staticPicture, quarter);
    return runGrowth(argc, argv);
}
