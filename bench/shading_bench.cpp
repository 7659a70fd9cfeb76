// SPDX-License-Identifier: GPL-3.0-or-later
// Shading the mesh in the panes of a window of 1920x1000 pixels while it turns: the left pane,
// both, and after an edit, when the triangles are listed anew. On one thread but for the rows that
// say otherwise. Where OpenGL is there, what it takes for the left pane stands beside it.
#include "bench/grid.h"
#include "bench/growth.h"
#include "bench/opengl_pane.h"
#include "display/options.h"
#include "display/pane.h"
#include "display/shading.h"
#include "display/texture_slots.h"
#include "display/wireframe.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "picture/workers.h"

#include <malloc.h>

namespace polyfab::bench {
namespace {

constexpr Size client{1920, 1000};

struct Scene {
    bool smooth = true;
    bool textured = false;
    bool shuffled = false;
    int threads = 1;
};

/// A picture of 1024 x 1024 pixels.
std::shared_ptr<const Image> noise() {
    auto image = std::make_shared<Image>();
    image->width = image->height = 1024;
    for (std::uint32_t i = 0; i < 1024 * 1024; ++i) {
        image->pixels.push_back(0xFF000000 | (i * 2654435761U >> 8));
    }
    return image;
}

/// The mesh at a slant.
void showGrid(std::int64_t triangles, const Scene& scene) {
    setWorkers(scene.threads);
    displayOptions = {.renderLeft = true, .renderRight = true, .renderSmooth = scene.smooth};
    displayOptions.renderedEdges = false;
    buildGridMesh(triangles);
    if (scene.shuffled) shuffleMesh(*OB);
    view.client = client;
    resetView();
    turnView(1, 0.6, true);
    turnView(0, 0.5, true);
    fitView(*OB);
    if (scene.textured) setTextureSlot(0, {"noise", noise()});
    stale = Stale();
    benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
}

double megabytesInUse() {
    const struct mallinfo2 use = mallinfo2();
    return static_cast<double>(use.uordblks + use.hblkhd) / 1e6;
}

void endScene(benchmark::State& state) {
    showRate(state, "triangles", OB->nf);
    const double withShading = megabytesInUse();
    forgetShading();
    state.counters["shading_MB"] = withShading - megabytesInUse();
    displayOptions = {};
    resetTextureSlots();
    setWorkers(0);
}

void drawLeft(Bitmap& picture) {
    turnView(1, 0.001, true);
    transformPoints(*OB);
    prepareShading(*OB, {.points = true, .edges = false, .picture = false}, false);
    drawShaded(*OB, makePane(picture, true));
}

template <bool smooth, bool textured, bool shuffled>
void onePane(benchmark::State& state) {
    showGrid(state.range(0), {smooth, textured, shuffled});
    Bitmap picture{client.width, client.height, {}};
    picture.pixels.resize(std::size_t(client.width) * std::size_t(client.height));
    for (auto _ : state) drawLeft(picture);
    endScene(state);
}

template <bool smooth, bool textured, int threads>
void bothPanes(benchmark::State& state) {
    showGrid(state.range(0), {smooth, textured, false, threads});
    for (auto _ : state) {
        turnView(1, 0.001, true);
        benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    }
    endScene(state);
}

/// The next picture after faces have changed.
template <bool shuffled>
void edited(benchmark::State& state) {
    showGrid(state.range(0), {true, false, shuffled});
    for (auto _ : state) {
        forgetShading();
        stale.edges = true;
        benchmark::DoNotOptimize(drawPanes(*OB, client).pixels.data());
    }
    endScene(state);
}

#ifdef POLYFAB_OPENGL
/// For comparison, on all threads that OpenGL takes.
template <bool smooth, bool textured>
void oneOpenGlPane(benchmark::State& state) {
    showGrid(state.range(0), {smooth});
    const Panes panes = panesOf(client);
    const auto pane = OpenGlPane::open(panes.leftWidth, panes.height, smooth, textured);
    if (pane == nullptr) return state.SkipWithError("there is no OpenGL");
    for (auto _ : state) {
        turnView(1, 0.001, true);
        pane->draw();
    }
    endScene(state);
}

void addOpenGl(std::int64_t n) {
    const auto add = [=](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->Arg(n)->Arg(4 * n)->MeasureProcessCPUTime()->Unit(
            benchmark::kMillisecond);
    };
    add("one pane flat, OpenGL", oneOpenGlPane<false, false>);
    add("one pane smooth, OpenGL", oneOpenGlPane<true, false>);
    add("one pane textured, OpenGL", oneOpenGlPane<true, true>);
}
#else
void addOpenGl(std::int64_t) {}
#endif

} // namespace
} // namespace polyfab::bench

int main(int argc, char** argv) {
    using namespace polyfab::bench;
    constexpr std::int64_t quarter = 250'632; // 1,002,528 in the larger one
    addGrowth("one pane flat", onePane<false, false, false>, quarter);
    addGrowth("one pane smooth", onePane<true, false, false>, quarter);
    addGrowth("one pane textured", onePane<true, true, false>, quarter);
    addGrowth("one pane flat, shuffled mesh", onePane<false, false, true>, quarter);
    addGrowth("one pane smooth, shuffled mesh", onePane<true, false, true>, quarter);
    addGrowth("one pane textured, shuffled mesh", onePane<true, true, true>, quarter);
    addGrowth("both panes flat", bothPanes<false, false, 1>, quarter);
    addGrowth("both panes smooth", bothPanes<true, false, 1>, quarter);
    addGrowth("both panes textured", bothPanes<true, true, 1>, quarter);
    addGrowth("both panes smooth, two threads", bothPanes<true, false, 2>, quarter);
    addGrowth("both panes smooth, after an edit", edited<false>, quarter);
    addGrowth("both panes smooth, after an edit, shuffled mesh", edited<true>, quarter);
    addOpenGl(quarter);
    return runGrowth(argc, argv);
}
