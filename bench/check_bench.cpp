// SPDX-License-Identifier: GPL-3.0-or-later
// The integrity check over the grid, and the tracked store with its blocks in random order.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/check.h"
#include "mesh/store.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

namespace bench = polyfab::bench;

void checkGrid(benchmark::State& state) {
    bench::buildGridMesh(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(polyfab::check(*polyfab::OB));
    bench::showRate(state, "faces/s", polyfab::OB->nf);
}

/// Allocates, resizes and frees n blocks, the last two in random order.
void storeBlocks(benchmark::State& state) {
    std::vector<void*> blocks(static_cast<std::size_t>(state.range(0)));
    std::mt19937 random(1);
    for (auto _ : state) {
        for (void*& block : blocks) block = polyfab::farmalloc(24);
        std::shuffle(blocks.begin(), blocks.end(), random);
        for (void*& block : blocks) block = polyfab::farrealloc(block, 48, nullptr);
        std::shuffle(blocks.begin(), blocks.end(), random);
        for (void*& block : blocks) polyfab::farfree(&block);
    }
    bench::showRate(state, "blocks/s", static_cast<double>(blocks.size()));
}

} // namespace

int main(int argc, char** argv) {
    bench::addGrowth("check", checkGrid, 250'000);
    bench::addGrowth("store", storeBlocks, 50'000);
    return bench::runGrowth(argc, argv);
}
