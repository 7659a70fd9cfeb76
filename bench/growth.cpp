// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/growth.h"

#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"

#include <map>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace polyfab::bench {
namespace {

/// Adds the growth column: processor time in units of the smallest size's.
class GrowthReporter : public benchmark::ConsoleReporter {
  public:
    GrowthReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<Run> shown = runs;
        for (Run& run : shown) {
            const std::string key = run.run_name.function_name + run.aggregate_name;
            const double time = run.GetAdjustedCPUTime();
            const double first = smallest.try_emplace(key, time).first->second;
            run.counters["growth"] = first > 0 ? time / first : 0;
        }
        ConsoleReporter::ReportRuns(shown);
    }

  private:
    std::map<std::string, double> smallest;
};

} // namespace

void addGrowth(const char* name, void (*run)(benchmark::State&), std::int64_t n) {
    benchmark::RegisterBenchmark(name, run)->Arg(n)->Arg(4 * n)->Unit(benchmark::kMillisecond);
}

void showRate(benchmark::State& state, const char* name, double perRun) {
    state.counters[name] =
        benchmark::Counter(perRun, benchmark::Counter::kIsIterationInvariantRate);
}

double recordBytes() {
    const auto bytes = [](auto* array, int n) { return static_cast<double>(sizeof(*array)) * n; };
    return bytes(OB->points, OB->np) + bytes(OB->corners, OB->nq) + bytes(OB->faces, OB->nf)
           + bytes(OB->texcoords, OB->nt) + bytes(OB->normals, OB->nd);
}

void showPeak(benchmark::State& state, double bytes) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double peak = static_cast<double>(usage.ru_maxrss) * 1024;
    state.counters["peak MB"] = peak / (1024 * 1024);
    state.counters["of records"] = peak / bytes;
}

int runGrowth(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const test::FakePlatform silent;
    createMesh();
    GrowthReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    destroyMesh();
    return 0;
}

} // namespace polyfab::bench
