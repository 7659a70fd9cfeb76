// SPDX-License-Identifier: GPL-3.0-or-later
// Collection, edge tables and orientation over the grid, and over the shapes that are worst for
// them: a strip of faces numbered against the direction in which orientation travels, points that
// only the first of millions of faces uses, and huge faces that pass their points twice.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/edges.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "mesh/store.h"

#include <algorithm>
#include <vector>

namespace {

namespace bench = polyfab::bench;
using polyfab::OB;

void collect(benchmark::State& state) {
    bench::buildGridMesh(state.range(0));
    const auto faces = OB->nf;
    for (auto _ : state) polyfab::collectGarbage(*OB);
    bench::showRate(state, "faces/s", faces);
}

/// Every fourth face is deleted: all arrays have something to drop.
void collectHoles(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        bench::buildGridMesh(state.range(0));
        for (int i = 0; i < OB->nf; i += 4) OB->faces[i].q = nullptr;
        state.ResumeTiming();
        polyfab::collectGarbage(*OB);
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

void edges(benchmark::State& state) {
    bench::buildGridMesh(state.range(0));
    const int before = polyfab::storeBlocks();
    for (auto _ : state) polyfab::buildEdges(*OB);
    state.counters["blocks"] = polyfab::storeBlocks() - before;
    polyfab::freeEdges(*OB);
    bench::showRate(state, "faces/s", OB->nf);
}

/// The whole command: collection, edges, spreading, and collection and edges again.
void orient(benchmark::State& state) {
    bench::buildGridMesh(state.range(0));
    for (int i = 0; i < OB->nf; i += 3) polyfab::reverseFace(OB->faces[i]);
    OB->curface = OB->nf / 2;
    for (auto _ : state) polyfab::checkEdges(*OB, true, false, false);
    bench::showRate(state, "faces/s", OB->nf);
}

void orientStrip(benchmark::State& state) {
    OB->clear(true);
    const auto faces = static_cast<int>(state.range(0));
    for (int i = 0; i < faces + 2; ++i) {
        const int column = i / 2;
        OB->addPoint(column, i % 2, 0, false);
    }
    for (int i = 0; i < faces; ++i) {
        polyfab::Point* const first = OB->points + i;
        polyfab::Point* const list[] = {first, first + 1, first + 2};
        OB->addFaceByPoints(list, 3, false);
    }
    OB->curface = faces - 1;
    for (auto _ : state) polyfab::checkEdges(*OB, true, false, false);
    bench::showRate(state, "faces/s", faces);
}

/// One face of that many corners, whose list of points is `pointAt` of the places.
void tidy(benchmark::State& state, int (*pointAt)(int place, int corners)) {
    const auto corners = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        OB->clear(true);
        for (int i = 0; i < corners; ++i) OB->addPoint(i, 0, 0, false);
        std::vector<polyfab::Point*> list;
        for (int i = 0; i < corners; ++i) list.push_back(OB->points + pointAt(i, corners));
        OB->addFaceByPoints(list.data(), corners, false);
        state.ResumeTiming();
        polyfab::tidyFace(*OB, 0, true);
    }
    bench::showRate(state, "corners/s", corners);
}

void tidyStar(benchmark::State& state) {
    tidy(state, [](int place, int) { return place % 3 == 0 ? 0 : place; });
}

void tidySpike(benchmark::State& state) {
    tidy(state,
         [](int place, int corners) { return place < corners / 2 ? place : corners - place; });
}

/// Twice through all the points, the second time in another order.
void tidyShuffled(benchmark::State& state) {
    tidy(state, [](int place, int corners) {
        const int half = corners / 2;
        return place < half ? place : static_cast<int>(std::int64_t{place} * 4099 % half);
    });
}

/// A seam: forth over points with another one after each, and back over the same points. Every loop
/// is closed only after a way round the whole face.
void tidySeam(benchmark::State& state) {
    tidy(state, [](int place, int corners) {
        const int forth = corners / 3 * 2;
        return place < forth || place % 2 != 0 ? place : std::max(0, 2 * (corners - place));
    });
}

} // namespace

int main(int argc, char** argv) {
    bench::addGrowth("collect", collect, 250'000);
    bench::addGrowth("collect_holes", collectHoles, 250'000);
    bench::addGrowth("edges", edges, 250'000);
    bench::addGrowth("edges_large", edges, 2'500'000);
    bench::addGrowth("orient", orient, 250'000);
    bench::addGrowth("orient_strip", orientStrip, 50'000);
    bench::addGrowth("tidy_star", tidyStar, 8'000);
    bench::addGrowth("tidy_spike", tidySpike, 8'000);
    bench::addGrowth("tidy_shuffled", tidyShuffled, 8'000);
    bench::addGrowth("tidy_seam", tidySeam, 8'000);
    return bench::runGrowth(argc, argv);
}
