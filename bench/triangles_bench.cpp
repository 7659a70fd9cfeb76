// SPDX-License-Identifier: GPL-3.0-or-later
// Joining of triangles over the grid in file order and in any order, alone and with what follows
// it, and over the worst there is: triangles that are all on one edge and none of which can be
// joined. Splitting over large faces.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/garbage.h"
#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"
#include "tools/detriangularize.h"
#include "tools/triangularize.h"

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace {

namespace bench = polyfab::bench;
using polyfab::Mesh;
using polyfab::OB;

std::int32_t below(std::mt19937& random, std::int32_t n) {
    return static_cast<std::int32_t>(random() % static_cast<unsigned>(n));
}

/// The grid with its faces and points in any order, as read from such a file: the corners lie in
/// the order of the faces.
void buildShuffled(std::int64_t triangles) {
    bench::buildGridMesh(triangles);
    std::mt19937 random(1);
    for (std::int32_t i = OB->nf - 1; i > 0; --i) {
        std::swap(OB->faces[i], OB->faces[below(random, i + 1)]);
    }
    // As multiplication by a number without common factors orders the points.
    const std::vector<polyfab::Point> points(OB->points, OB->points + OB->np);
    const auto placeOf = [&](std::int64_t point) { return point * 1'000'003 % OB->np; };
    for (std::int32_t i = 0; i < OB->np; ++i) {
        OB->points[placeOf(i)] = points[static_cast<std::size_t>(i)];
    }
    for (std::int32_t c = 0; c < OB->nq; ++c) {
        polyfab::Point*& p = OB->corners[c].p;
        p = OB->points + placeOf(polyfab::indexIn(OB->points, p));
    }
    polyfab::collectGarbage(*OB);
}

/// Triangles around one edge like the pages of a book, every other one turned over: two that run
/// the edge in opposite ways are far from flat to each other.
void buildBook(std::int64_t triangles) {
    OB->clear(true);
    OB->addPoint(0, 0, -1, false);
    OB->addPoint(0, 0, 1, false);
    for (std::int64_t i = 0; i < triangles; ++i) {
        const double angle = static_cast<double>(i) / static_cast<double>(triangles);
        const int page = OB->addPoint(std::cos(angle), std::sin(angle), 0, false);
        polyfab::Point* const p = OB->points;
        polyfab::Point* const list[] = {p + i % 2, p + (1 - i % 2), p + page};
        OB->addFaceByPoints(list, 3, false);
    }
}

/// Faces of 64 corners each; the triangles of their fans are counted.
void buildLargeFaces(std::int64_t triangles) {
    OB->clear(true);
    for (std::int64_t count = 0; count < triangles; count += 62) {
        const int first = OB->np;
        polyfab::Point* list[64];
        for (int k = 0; k < 64; ++k)
            OB->addPoint(std::cos(k * 0.1), std::sin(k * 0.1), first, false);
        for (int k = 0; k < 64; ++k) list[k] = OB->points + first + k;
        OB->addFaceByPoints(list, 64, false);
    }
}

template <void (*build)(std::int64_t), void (*tool)(Mesh&)>
void run(benchmark::State& state) {
    auto& platform = static_cast<polyfab::test::FakePlatform&>(polyfab::platform());
    for (auto _ : state) {
        state.PauseTiming();
        build(state.range(0));
        platform.log.clear();
        state.ResumeTiming();
        tool(*OB);
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

template <void (*tool)(Mesh&, bool), bool silent>
void join(Mesh& mesh) {
    tool(mesh, silent);
}

constexpr auto quick = join<polyfab::detriquick, true>;
constexpr auto thorough = join<polyfab::detrithorough, true>;
constexpr auto thoroughToTheEnd = join<polyfab::detrithorough, false>;

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 250'000;
    bench::addGrowth("quick", run<bench::buildGridMesh, quick>, n);
    bench::addGrowth("thorough", run<bench::buildGridMesh, thorough>, n);
    bench::addGrowth("thorough_to_the_end", run<bench::buildGridMesh, thoroughToTheEnd>, n);
    bench::addGrowth("thorough_shuffled", run<buildShuffled, thorough>, n);
    bench::addGrowth("thorough_shuffled_to_the_end", run<buildShuffled, thoroughToTheEnd>, n);
    bench::addGrowth("thorough_book", run<buildBook, thorough>, 5'000);
    bench::addGrowth("triangularize", run<buildLargeFaces, polyfab::triangularize>, n);
    bench::addGrowth("break_up", run<buildLargeFaces, polyfab::breakupfaces>, n);
    return bench::runGrowth(argc, argv);
}
