// SPDX-License-Identifier: GPL-3.0-or-later
// What a recovery file costs: the check and the snapshot, for which the user waits; the packing,
// which a thread does; and the reading at the next start. The bytes are those of the file.
#include "bench/grid.h"
#include "bench/growth.h"
#include "editor/recovery/recovery_file.h"
#include "mesh/check.h"
#include "mesh/mesh.h"

namespace polyfab::bench {
namespace {

void snapshot(benchmark::State& state) {
    buildGridMesh(state.range(0));
    const SnapshotRef before = takeSnapshot(*OB, nullptr);
    for (auto _ : state) {
        benchmark::DoNotOptimize(check(*OB));
        benchmark::DoNotOptimize(takeSnapshot(*OB, before));
    }
}

void pack(benchmark::State& state) {
    buildGridMesh(state.range(0));
    const RecoveryRecord record = recoveryRecord(takeSnapshot(*OB, nullptr), presentPart());
    double bytes = 0;
    for (auto _ : state) bytes = static_cast<double>(packRecovery(record).size());
    state.counters["bytes/triangle"] = bytes / OB->nf;
}

void bringBack(benchmark::State& state) {
    buildGridMesh(state.range(0));
    view.client = {1024, 512};
    const std::string file =
        packRecovery(recoveryRecord(takeSnapshot(*OB, nullptr), presentPart()));
    for (auto _ : state) {
        RecoveryRecord record;
        if (!unpackRecovery(file, record).empty() || restoreMesh(record)) {
            state.SkipWithError("it does not come back");
        }
    }
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("recovery: snapshot", snapshot, quarter);
    addGrowth("recovery: pack", pack, quarter);
    addGrowth("recovery: bring back", bringBack, quarter);
    return runGrowth(argc, argv);
}
