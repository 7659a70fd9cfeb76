// SPDX-License-Identifier: GPL-3.0-or-later
// The welding tools, collection and edge pass included, over the grid taken apart into triangles
// that share no point, in file order and shuffled, and over distances at which a point is close to
// its twins only, to many others, or to all.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"
#include "tools/weld_edges.h"
#include "tools/weld_points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

namespace bench = polyfab::bench;
using polyfab::Mesh;
using polyfab::OB;

/// Each triangle of the grid gets points of its own.
void buildSoup(std::int64_t triangles) {
    bench::buildGridMesh(triangles);
    const std::int32_t corners = OB->nq;
    std::vector<std::int32_t> from(static_cast<std::size_t>(corners));
    for (std::int32_t c = 0; c < corners; ++c) {
        from[static_cast<std::size_t>(c)] = polyfab::indexIn(OB->points, OB->corners[c].p);
    }
    const std::int32_t shared = OB->np;
    if (!OB->growPoints(std::int64_t{shared} + corners, false)) return;
    for (std::int32_t c = 0; c < corners; ++c) {
        OB->points[OB->np] = OB->points[from[static_cast<std::size_t>(c)]];
        OB->corners[c].p = OB->points + OB->np++;
    }
}

/// The same with the triangles' points in any order.
void buildShuffled(std::int64_t triangles) {
    buildSoup(triangles);
    std::vector<std::int32_t> order(static_cast<std::size_t>(OB->nq));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    polyfab::Point* const own = OB->points + OB->np - OB->nq;
    const std::vector<polyfab::Point> points(own, own + OB->nq);
    for (std::int32_t c = 0; c < OB->nq; ++c) {
        const auto place = order[static_cast<std::size_t>(c)];
        own[place] = points[static_cast<std::size_t>(c)];
        OB->corners[c].p = own + place;
    }
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

/// Ten sides of a square of the grid.
std::string tenSides() {
    const polyfab::Face& face = OB->faces[0];
    const polyfab::Point &a = *face.q[0].p, &b = *face.q[1].p;
    return number(10 * std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)));
}

std::string aHair() { return "1e-5"; }
std::string everything() { return "1e9"; }

void weldAll(Mesh& mesh) { polyfab::weldclose(mesh, true); }
void weldLoose(Mesh& mesh) { polyfab::weldclose(mesh, false); }
void bringAll(Mesh& mesh) { polyfab::bringclose(mesh, false); }

template <void (*build)(std::int64_t), std::string (*distance)(), void (*tool)(Mesh&)>
void run(benchmark::State& state) {
    auto& platform = static_cast<polyfab::test::FakePlatform&>(polyfab::platform());
    for (auto _ : state) {
        state.PauseTiming();
        build(state.range(0));
        platform.dialogAnswers = {{distance()}};
        platform.log.clear();
        state.ResumeTiming();
        tool(*OB);
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 250'000;
    bench::addGrowth("weld_soup", run<buildSoup, aHair, weldAll>, n);
    bench::addGrowth("weld_soup_loose", run<buildSoup, aHair, weldLoose>, n);
    bench::addGrowth("weld_shuffled", run<buildShuffled, aHair, weldAll>, n);
    bench::addGrowth("bring_soup", run<buildSoup, aHair, bringAll>, n);
    bench::addGrowth("weld_ten_sides", run<buildSoup, tenSides, weldAll>, n);
    bench::addGrowth("weld_everything", run<buildSoup, everything, weldAll>, n);
    bench::addGrowth("edges_ten_sides", run<bench::buildGridMesh, tenSides, polyfab::weldedges>, n);
    bench::addGrowth("edges_everything", run<bench::buildGridMesh, everything, polyfab::weldedges>,
                     n);
    return bench::runGrowth(argc, argv);
}
