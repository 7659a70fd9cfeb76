// SPDX-License-Identifier: GPL-3.0-or-later
// The tools over the grid and over the shapes that are worst for them: faces that are all alike and
// a point that every face is glued to.
#include "bench/grid.h"
#include "bench/growth.h"
#include "display/view.h"
#include "generators/block.h"
#include "mesh/mesh.h"
#include "tools/duplicate.h"
#include "tools/find_areas.h"
#include "tools/find_parts.h"
#include "tools/names_from_numbers.h"
#include "tools/point_normals.h"
#include "tools/same_corners.h"
#include "tools/separate_glued.h"
#include "tools/smooth.h"
#include "tools/thicken.h"
#include "tools/unweld.h"

#include <cstdint>

namespace {

namespace bench = polyfab::bench;
using polyfab::Face;
using polyfab::Mesh;
using polyfab::OB;

/// Of the grid one half is selected, and it lies in a thousand parts.
void buildParts(std::int64_t triangles) {
    bench::buildGridMesh(triangles);
    while (OB->nprt < 1000) OB->addPart();
    for (int i = 0; i < OB->nf; ++i) {
        OB->faces[i].selected = i < OB->nf / 2;
        OB->faces[i].prt = static_cast<std::int16_t>(std::int64_t{i} * 1000 / OB->nf);
    }
}

/// Every face lies on the same three points.
void buildAlike(std::int64_t triangles) {
    bench::buildGridMesh(triangles);
    for (int c = 0; c < OB->nq; ++c) OB->corners[c].p = OB->points + c % 3;
}

/// Triangles that have nothing but the first point in common.
void buildFan(std::int64_t triangles) {
    OB->clear(true);
    for (std::int64_t i = 0; i < 2 * triangles + 1; ++i) {
        OB->addPoint(static_cast<double>(i), 0, 0, false);
    }
    for (std::int64_t i = 0; i < triangles; ++i) {
        polyfab::Point* const p = OB->points;
        polyfab::Point* const list[] = {p, p + 2 * i + 1, p + 2 * i + 2};
        OB->addFaceByPoints(list, 3, false);
    }
}

/// Separate cubes, which have this many faces.
void buildCubes(std::int64_t faces) {
    OB->clear(true);
    constexpr int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                 {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    while (OB->nf < faces) {
        const int base = OB->np;
        for (int i = 0; i < 8; ++i) OB->addPoint(base + (i & 1), i >> 1 & 1, i >> 2, false);
        for (const auto& quad : quads) {
            polyfab::Point* list[4];
            for (int k = 0; k < 4; ++k) list[k] = OB->points + base + quad[k];
            OB->addFaceByPoints(list, 4, false);
        }
    }
}

template <void (*build)(std::int64_t), void (*tool)(Mesh&)>
void run(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        build(state.range(0));
        state.ResumeTiming();
        tool(*OB);
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

/// One pass over the normals of the points.
void smoothNormals(benchmark::State& state) {
    bench::buildGridMesh(state.range(0));
    polyfab::SelectedSurface surface(*OB);
    surface.findNormals();
    for (auto _ : state) surface.smoothNormals();
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

void findParts(Mesh& mesh) { polyfab::findparts(mesh, 0); }
void findSharpParts(Mesh& mesh) { polyfab::findparts(mesh, 30); }
void makeBlock(Mesh& mesh) { polyfab::makeBlock(mesh, 5, 6, 5, 6, 5, 6); }
void smoothView(Mesh& mesh) { polyfab::smoothView(mesh, 'x'); }

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 250'000;
    bench::addGrowth("duplicate", run<buildParts, polyfab::duplicateSelected>, n);
    bench::addGrowth("duplicate_join", run<buildParts, polyfab::duplicateSelectedJoined>, n);
    bench::addGrowth("same_corners", run<buildParts, polyfab::unselectFacesOnSamePoints>, n);
    bench::addGrowth("same_corners_alike", run<buildAlike, polyfab::removeFacesOnSamePoints>, n);
    bench::addGrowth("glued", run<buildParts, polyfab::separateGluedSurfaces>, n);
    bench::addGrowth("glued_fan", run<buildFan, polyfab::separateGluedSurfaces>, n);
    bench::addGrowth("unweld", run<buildParts, polyfab::unweldSelected>, n);
    bench::addGrowth("unweld_parts", run<buildParts, polyfab::unweldSelectedParts>, n);
    bench::addGrowth("parts_to_materials", run<buildParts, polyfab::makePartsIntoMaterials>, n);
    bench::addGrowth("find_parts", run<bench::buildGridMesh, findParts>, n);
    bench::addGrowth("find_parts_sharp", run<bench::buildGridMesh, findSharpParts>, n);
    bench::addGrowth("find_parts_cubes", run<buildCubes, findParts>, 30'000);
    bench::addGrowth("find_areas", run<bench::buildGridMesh, polyfab::findareas>, n);
    bench::addGrowth("block", run<bench::buildGridMesh, makeBlock>, n);
    bench::addGrowth("thicken", run<bench::buildGridMesh, polyfab::thicken>, n);
    bench::addGrowth("smooth_normals", smoothNormals, n);
    bench::addGrowth("smooth_dents", run<bench::buildGridMesh, polyfab::smoothDents>, n);
    bench::addGrowth("smooth_view", run<bench::buildGridMesh, smoothView>, n);
    return bench::runGrowth(argc, argv);
}
