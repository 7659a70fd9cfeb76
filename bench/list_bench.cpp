// SPDX-License-Identifier: GPL-3.0-or-later
// Name lists of 10,000 groups over a grid, in a window of 1920x1000 pixels: opening one and
// painting it, moving a group, and closing it. Texts are not drawn here.
#include "bench/grid.h"
#include "bench/growth.h"
#include "editor/lists/subview.h"
#include "editor/window.h"
#include "mesh/group_order.h"
#include "mesh/mesh.h"

#include <random>
#include <string>

namespace polyfab::bench {
namespace {

constexpr int groupCount = 10'000;

/// Neighbouring faces are in groups far apart: the worst order for counting.
void buildGroups(std::int64_t triangles) {
    buildGridMesh(triangles);
    std::mt19937 random(1);
    while (OB->ng < groupCount) OB->addGroup("group " + std::to_string(OB->ng));
    for (int f = 0; f < OB->nf; ++f) {
        OB->faces[f].g = static_cast<std::int16_t>(random() % groupCount);
    }
}

void openAndPaint(benchmark::State& state) {
    buildGroups(state.range(0));
    for (auto _ : state) {
        openSubview(subview::groups);
        handleEvent({.kind = EventKind::paint});
    }
    closeSubview();
    showRate(state, "faces", OB->nf);
}

void reorder(benchmark::State& state) {
    buildGroups(state.range(0));
    for (auto _ : state) moveGroup(*OB, groupCount - 1, 0);
    showRate(state, "faces", OB->nf);
}

void closeList(benchmark::State& state) {
    buildGroups(state.range(0));
    for (auto _ : state) {
        openSubview(subview::groups);
        handleEvent({.kind = EventKind::keyDown, .key = key::escape});
        handleEvent({.kind = EventKind::keyUp, .key = key::escape});
    }
    showRate(state, "faces", OB->nf);
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("open and paint", openAndPaint, quarter);
    addGrowth("move a group", reorder, quarter);
    addGrowth("open and close", closeList, quarter);
    return runGrowth(argc, argv);
}
