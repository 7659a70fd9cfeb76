// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing OBJ files, in MB of file by second of processor time, and the peak of
// resident memory over the records after a read.
#include "bench/grid.h"
#include "bench/growth.h"
#include "bench/scratch_file.h"
#include "formats/obj/obj_reader.h"
#include "formats/obj/obj_writer.h"
#include "mesh/mesh.h"
#include "mesh/store.h"

#include <fstream>
#include <string>

namespace {

using polyfab::OB;
namespace bench = polyfab::bench;
using bench::ScratchFile;

/// A line of this process's status file, in bytes: "VmHWM:" is the peak, "VmRSS:" the present.
double residentBytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word && word != key) {
    }
    status >> kilobytes;
    return kilobytes * 1024;
}

/// Makes the present the peak so far.
void resetPeak() { std::ofstream("/proc/self/clear_refs") << '5'; }

double recordBytes() {
    const auto bytes = [](std::int32_t count, std::size_t size) {
        return static_cast<double>(count) * static_cast<double>(size);
    };
    return bytes(OB->np, sizeof *OB->points) + bytes(OB->nq, sizeof *OB->corners)
           + bytes(OB->nf, sizeof *OB->faces) + bytes(OB->nt, sizeof *OB->texcoords)
           + bytes(OB->nd, sizeof *OB->normals);
}

void readFile(benchmark::State& state, bool (*write)(const std::string&, std::int64_t)) {
    const ScratchFile file;
    if (!write(file.path, state.range(0))) state.SkipWithError("no scratch file");
    // On a virtual machine the first use of memory for a while also pays for its host's pages.
    if (!polyfab::readObjFile(*OB, file.path, false)) state.SkipWithError("not read");
    OB->clear(true);
    const double before = residentBytes("VmRSS:");
    resetPeak();
    for (auto _ : state) {
        // Reading clears the mesh, which leaves the groups it had to whoever holds them.
        polyfab::Group* groups = OB->groups;
        if (!polyfab::readObjFile(*OB, file.path, false)) state.SkipWithError("not read");
        polyfab::farfree(&groups);
    }
    state.counters["peak/records"] = (residentBytes("VmHWM:") - before) / recordBytes();
    bench::showRate(state, "MB", file.megabytes());
}

void readGrid(benchmark::State& state) { readFile(state, bench::writeGridObj); }

void count(benchmark::State& state) {
    const ScratchFile file;
    if (!bench::writeGridObj(file.path, state.range(0))) state.SkipWithError("no scratch file");
    for (auto _ : state) {
        polyfab::ObjCounts counts;
        benchmark::DoNotOptimize(polyfab::countObjFile(file.path, counts));
    }
    bench::showRate(state, "MB", file.megabytes());
}

/// Triangles with a usemtl line each and many groups, as exporters of assemblies write them.
bool writeNamed(const std::string& path, std::int64_t faces) {
    std::ofstream file(path, std::ios::binary);
    file << "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    for (std::int64_t i = 0; i < faces; ++i) {
        if (i % 10 == 0) file << "g group_" << i % 100'000 << '\n';
        file << "usemtl material_" << i * 7919 % 10'000 << "\nf 1 2 3\n";
    }
    file.close();
    return file.good();
}

void readNamed(benchmark::State& state) { readFile(state, writeNamed); }

void writeGrid(benchmark::State& state) {
    const ScratchFile file;
    bench::buildGridMesh(state.range(0));
    for (auto _ : state) {
        if (!polyfab::writeObjFile(*OB, file.path, 0)) state.SkipWithError("not written");
    }
    bench::showRate(state, "MB", file.megabytes());
}

} // namespace

int main(int argc, char** argv) {
    bench::addGrowth("count", count, 250'000);
    bench::addGrowth("read", readGrid, 250'000);
    bench::addGrowth("read_names", readNamed, 25'000);
    bench::addGrowth("write", writeGrid, 250'000);
    return bench::runGrowth(argc, argv);
}
