// SPDX-License-Identifier: GPL-3.0-or-later
// Runs every benchmark at a size n and at 4n and prints how much longer the second takes: a
// "growth" of 4 is linear, 16 quadratic. A benchmark program is a list of them:
//
//     void read(benchmark::State& state) {
//         buildGridMesh(state.range(0));
//         for (auto _ : state) check(*OB);
//         showRate(state, "faces", OB->nf);
//     }
//     int main(int argc, char** argv) {
//         addGrowth("check", read, 250'000);
//         return runGrowth(argc, argv);
//     }
#pragma once

#include <benchmark/benchmark.h>
#include <cstdint>

namespace polyfab::bench {

/// Enters a benchmark whose state.range(0) is n and then 4n. Times are processor times.
void addGrowth(const char* name, void (*run)(benchmark::State&), std::int64_t n);

/// Prints how much is done in a second of processor time, when one iteration does `perRun`, in a
/// column of that name.
void showRate(benchmark::State& state, const char* name, double perRun);

/// Bytes of the records of OB.
[[nodiscard]] double recordBytes();

/// Prints the most memory that the process has had, and how many times these bytes that is. What
/// ran before in the process counts, so such a row is best run alone (--benchmark_filter).
void showPeak(benchmark::State& state, double bytes);

/// Makes OB and a platform that shows nothing, runs what was entered (the arguments are those of
/// the library), and prints the table. The result is the program's exit code.
int runGrowth(int argc, char** argv);

} // namespace polyfab::bench
