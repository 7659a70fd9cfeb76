// SPDX-License-Identifier: GPL-3.0-or-later
// The makers of objects, from the answered dialog to the faces in an empty mesh, and what the
// preview takes while it is open.
#include "bench/growth.h"
#include "generators/maker.h"
#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace bench = polyfab::bench;
using namespace polyfab;

/// A polygon of so many corners beside the axis y, the current face.
void addPolygon(int corners) {
    std::vector<Point*> list;
    for (int i = 0; i < corners; ++i) {
        const double angle = 8 * std::atan(1.0) * i / corners;
        OB->addPoint(3 + std::cos(angle), std::sin(angle), 0, false);
    }
    for (int i = 0; i < corners; ++i) list.push_back(OB->points + i);
    OB->addFaceByPoints(list.data(), corners, false);
    OB->curface = 0;
}

std::string text(double number) { return std::to_string(static_cast<int>(number)); }

/// The answers that lead to about this many faces.
using Answers = std::vector<std::string> (*)(double faces);

std::vector<std::string> sphere(double n) {
    return {"0", "0", "0", "1", text(std::sqrt(n)), text(std::sqrt(n))};
}
std::vector<std::string> rounded(double n) {
    return {"0", "0", "0", "1", "2", "3", "1", text(std::sqrt(n)), text(std::sqrt(n) / 2)};
}
std::vector<std::string> torus(double n) {
    return {"0", "0", "0", "1", "2", "3", "1", "0.3", text(std::sqrt(n)), text(std::sqrt(n))};
}
std::vector<std::string> sparks(double n) {
    return {"0", "0", "0", "1", "2", "3", text(n / 4), "20", "0.01", "0.001"};
}
std::vector<std::string> pipe(double n) { return {"0.3", text(n / 1000)}; }
std::vector<std::string> spin(double n) {
    return {"0", "0", "0", "0", "1", "0", "360", text(n / 1000)};
}

/// Answers at once, and does not show what the fields mean.
template <const Maker& maker, Answers answers>
void make(benchmark::State& state) {
    test::FakePlatform answering;
    for (auto _ : state) {
        state.PauseTiming();
        OB->clear(true);
        addPolygon(1000);
        answering.dialogAnswers = {answers(static_cast<double>(state.range(0)))};
        state.ResumeTiming();
        askAndMake(*OB, maker);
    }
    bench::showRate(state, "faces/s", OB->nf);
}

/// What a typed digit costs.
void preview(benchmark::State& state) {
    struct : test::FakePlatform {
        DialogResult dialog(Dialog& dialog) override {
            std::vector<DialogField> fields = dialog.fields;
            for (std::size_t i = 0; i < typed.size(); ++i) fields[i].text = typed[i];
            dialog.onChange(fields);
            return DialogResult::cancel;
        }
        std::vector<std::string> typed;
    } answering;
    answering.typed = sphere(static_cast<double>(state.range(0)));
    for (auto _ : state) askAndMake(*OB, sphereMaker);
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 250'000;
    bench::addGrowth("sphere", make<sphereMaker, sphere>, n);
    bench::addGrowth("rounded_cylinder", make<roundedCylinderMaker, rounded>, n);
    bench::addGrowth("torus", make<torusMaker, torus>, n);
    bench::addGrowth("sparks", make<sparksMaker, sparks>, n);
    bench::addGrowth("pipe", make<pipeMaker, pipe>, n);
    bench::addGrowth("spin", make<spinMaker, spin>, n);
    bench::addGrowth("sphere_preview", preview, n);
    return bench::runGrowth(argc, argv);
}
