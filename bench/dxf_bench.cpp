// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing DXF files, in 3DFACEs by second of processor time. "read_apart" is a soup of
// triangles that share no point.
#include "bench/grid.h"
#include "bench/growth.h"
#include "bench/scratch_file.h"
#include "formats/dxf/dxf_reader.h"
#include "formats/dxf/dxf_writer.h"
#include "mesh/mesh.h"
#include "mesh/store.h"

#include <cmath>

namespace {

using polyfab::OB;
namespace bench = polyfab::bench;

void buildApart(std::int64_t triangles) {
    OB->clear(true);
    const auto side = static_cast<std::int64_t>(std::sqrt(static_cast<double>(triangles)));
    for (std::int64_t i = 0; i < side * side; ++i) {
        const double x = static_cast<double>(i % side);
        const std::int64_t row = i / side;
        const double y = static_cast<double>(row);
        for (const double shift : {0.0, 0.25, 0.5})
            OB->addPoint(x + shift, y, shift * shift, false);
    }
    for (int i = 0; i < OB->np; i += 3) {
        polyfab::Point* list[] = {OB->points + i, OB->points + i + 1, OB->points + i + 2};
        OB->addFaceByPoints(list, 3, false);
    }
}

void readMesh(benchmark::State& state, void (*build)(std::int64_t)) {
    const bench::ScratchFile file;
    build(state.range(0));
    const double faces = OB->nf;
    if (!polyfab::writeDxfFile(*OB, file.path)) state.SkipWithError("no scratch file");
    for (auto _ : state) {
        // Reading clears the mesh, which leaves the groups it had to whoever holds them.
        polyfab::Group* groups = OB->groups;
        if (!polyfab::readDxfFile(*OB, file.path, false)) state.SkipWithError("not read");
        polyfab::farfree(&groups);
    }
    if (OB->nf != faces) state.SkipWithError("faces are missing");
    bench::showRate(state, "faces", faces);
}

void readGrid(benchmark::State& state) { readMesh(state, bench::buildGridMesh); }
void readApart(benchmark::State& state) { readMesh(state, buildApart); }

void writeGrid(benchmark::State& state) {
    const bench::ScratchFile file;
    bench::buildGridMesh(state.range(0));
    for (auto _ : state) {
        if (!polyfab::writeDxfFile(*OB, file.path)) state.SkipWithError("not written");
    }
    bench::showRate(state, "faces", OB->nf);
}

} // namespace

int main(int argc, char** argv) {
    bench::addGrowth("read", readGrid, 50'000);
    bench::addGrowth("read_apart", readApart, 50'000);
    bench::addGrowth("write", writeGrid, 50'000);
    return bench::runGrowth(argc, argv);
}
