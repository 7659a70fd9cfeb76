// SPDX-License-Identifier: GPL-3.0-or-later
// What a step of undo costs after a command that changed nothing, the selection, the place of
// everything, or all that there is; and what going back costs. The bytes are those that the step
// adds to the memory of the steps before it, for each triangle.
#include "bench/grid.h"
#include "bench/growth.h"
#include "mesh/mesh.h"
#include "mesh/snapshot.h"

#include <algorithm>

namespace polyfab::bench {
namespace {

void changeNothing() {}

/// Every other face, in turn the even and the odd ones.
void select() {
    const bool even = OB->faces[0].selected == 0;
    for (int i = 0; i < OB->nf; ++i) OB->faces[i].selected = (i % 2 == 0) == even;
}

void move() {
    for (Point* p = OB->points; p != OB->points + OB->np; ++p) {
        p->x += 1.5;
        p->y += 1.5;
        p->z += 1.5;
    }
}

/// No column and no chunk stays what it was, and hardly any has values that are all alike.
void changeAll() {
    select();
    move();
    std::reverse(OB->points, OB->points + OB->np);
    std::reverse(OB->normals, OB->normals + OB->nd);
    std::reverse(OB->texcoords, OB->texcoords + OB->nt);
    std::reverse(OB->corners, OB->corners + OB->nq);
    std::reverse(OB->faces, OB->faces + OB->nf);
}

template <void (*change)()>
void step(benchmark::State& state) {
    buildGridMesh(state.range(0));
    SnapshotRef before = takeSnapshot(*OB, nullptr);
    double bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        change();
        const std::size_t held = snapshotBytes();
        state.ResumeTiming();
        SnapshotRef taken = takeSnapshot(*OB, before);
        state.PauseTiming();
        bytes = static_cast<double>(snapshotBytes() - held);
        before = std::move(taken); // the release of the older one is no part of a step
        state.ResumeTiming();
    }
    state.counters["bytes/triangle"] = bytes / OB->nf;
}

template <void (*change)()>
void undo(benchmark::State& state) {
    buildGridMesh(state.range(0));
    const SnapshotRef before = takeSnapshot(*OB, nullptr);
    change();
    const SnapshotRef after = takeSnapshot(*OB, before);
    bool back = true;
    for (auto _ : state) {
        restoreSnapshot(*OB, back ? *before : *after, back ? *after : *before);
        back = !back;
    }
}

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'000;
    addGrowth("step: nothing", step<changeNothing>, quarter);
    addGrowth("step: selection", step<select>, quarter);
    addGrowth("step: move", step<move>, quarter);
    addGrowth("step: all", step<changeAll>, quarter);
    addGrowth("undo: selection", undo<select>, quarter);
    addGrowth("undo: move", undo<move>, quarter);
    addGrowth("undo: all", undo<changeAll>, quarter);
    return runGrowth(argc, argv);
}
