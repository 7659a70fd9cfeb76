// SPDX-License-Identifier: GPL-3.0-or-later
// The tools that cut, close and thin: over the grid, over a grid full of holes, around one hole of
// very many edges, and over faces that bend inwards.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"
#include "tools/bad_faces.h"
#include "tools/fill_holes.h"
#include "tools/mesh_facts.h"
#include "tools/split_by_planes.h"
#include "tools/thin/thin_out.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

namespace bench = polyfab::bench;
using polyfab::Mesh;
using polyfab::OB;

/// Every 2,000th pair of triangles is missing, with its neighbours.
void buildHoles(std::int64_t triangles) {
    bench::buildGridMesh(triangles);
    for (int f = 0; f < OB->nf; ++f) {
        if (f / 2 % 2000 < 5) OB->faces[f].q = nullptr;
    }
}

/// A strip of quads whose inner edge is a wavy loop of this many edges.
void buildWavyHole(std::int64_t edges) {
    OB->clear(true);
    const auto n = static_cast<int>(edges);
    for (int k = 0; k < n; ++k) {
        const double a = 2 * M_PI * k / n, r = 1 + .2 * std::sin(7 * a) + .05 * std::sin(61 * a);
        const double z = .3 * std::sin(3 * a) + .1 * std::cos(17 * a);
        OB->addPoint(r * std::cos(a), r * std::sin(a), z, false);
        OB->addPoint(2 * std::cos(a), 2 * std::sin(a), 0, false);
    }
    for (int k = 0; k < n; ++k) {
        const int next = (k + 1) % n;
        polyfab::Point* const p = OB->points;
        polyfab::Point* const list[] = {p + 2 * k, p + 2 * k + 1, p + 2 * next + 1, p + 2 * next};
        OB->addFaceByPoints(list, 4, false);
    }
    OB->curvertex = 0;
}

/// Stars of 16 corners.
void buildStars(std::int64_t count) {
    OB->clear(true);
    for (std::int64_t i = 0; i < count; ++i) {
        const int first = OB->np;
        polyfab::Point* list[16];
        for (int k = 0; k < 16; ++k) {
            const double a = 2 * M_PI * k / 16, r = k % 2 == 0 ? 1 : 0.4;
            OB->addPoint(r * std::cos(a), r * std::sin(a), static_cast<double>(i), false);
        }
        for (int k = 0; k < 16; ++k) list[k] = OB->points + first + k;
        OB->addFaceByPoints(list, 16, false);
    }
}

template <void (*build)(std::int64_t), void (*tool)(Mesh&)>
void run(benchmark::State& state) {
    auto& platform = static_cast<polyfab::test::FakePlatform&>(polyfab::platform());
    double records = 0;
    for (auto _ : state) {
        state.PauseTiming();
        build(state.range(0));
        platform.dialogAnswers.assign(2, {}); // as they stand
        platform.log.clear();
        records = bench::recordBytes();
        state.ResumeTiming();
        tool(*OB);
        records = std::max(records, bench::recordBytes());
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
    bench::showPeak(state, records);
}

void splitOnce(Mesh& mesh) { polyfab::splitByPlanes(mesh, {{1, 0.01, 0}, 0, {0.0123}}); }

void splitOften(Mesh& mesh) {
    std::vector<double> at;
    for (int i = 0; i <= 10; ++i) at.push_back(-1 + i / 5.0);
    polyfab::splitByPlanes(mesh, {{1, 0.01, 0}, 0, at});
}

void tellFacts(Mesh& mesh) {
    polyfab::MeshFacts facts;
    benchmark::DoNotOptimize(polyfab::findFacts(mesh, facts));
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 250'000;
    bench::addGrowth("holes", run<buildHoles, polyfab::fillHoles>, n);
    bench::addGrowth("wavy_hole", run<buildWavyHole, polyfab::fillHole>, 10'000);
    bench::addGrowth("split_once", run<bench::buildGridMesh, splitOnce>, n);
    bench::addGrowth("split_at_11_planes", run<bench::buildGridMesh, splitOften>, n);
    bench::addGrowth("split_bad", run<buildStars, polyfab::splitBadFaces>, 10'000);
    bench::addGrowth("thin_to_a_half", run<bench::buildGridMesh, polyfab::thinOut>, n);
    bench::addGrowth("facts", run<bench::buildGridMesh, tellFacts>, n);
    return bench::runGrowth(argc, argv);
}
