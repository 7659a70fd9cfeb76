// SPDX-License-Identifier: GPL-3.0-or-later
// Welding two spheres that cut each other, and what they have in common.
#include "bench/growth.h"
#include "mesh/mesh.h"
#include "tests/support/fake_platform.h"
#include "tools/boolean/boolean.h"

#include <cmath>
#include <cstdint>

namespace {

namespace bench = polyfab::bench;
using polyfab::OB;

/// Of this many rings of twice as many points.
void addSphere(int rings, double x, double y, double z) {
    const int round = 2 * rings, first = OB->np;
    for (int i = 0; i <= rings; ++i) {
        const double down = M_PI * i / rings;
        for (int k = 0; k < (i % rings == 0 ? 1 : round); ++k) {
            const double turn = 2 * M_PI * k / round;
            OB->addPoint(x + std::sin(down) * std::cos(turn), y + std::sin(down) * std::sin(turn),
                         z + std::cos(down), false);
        }
    }
    const auto at = [&](int i, int k) {
        const int number = i == 0       ? 0
                           : i == rings ? (rings - 1) * round + 1
                                        : (i - 1) * round + 1 + k % round;
        return OB->points + first + number;
    };
    for (int i = 0; i < rings; ++i) {
        for (int k = 0; k < round; ++k) {
            polyfab::Point* const lower[] = {at(i, k), at(i + 1, k), at(i + 1, k + 1)};
            polyfab::Point* const upper[] = {at(i, k), at(i + 1, k + 1), at(i, k + 1)};
            if (i + 1 < rings) OB->addFaceByPoints(lower, 3, false);
            if (i > 0) OB->addFaceByPoints(upper, 3, false);
        }
    }
}

template <char keep>
void run(benchmark::State& state) {
    auto& platform = static_cast<polyfab::test::FakePlatform&>(polyfab::platform());
    for (auto _ : state) {
        state.PauseTiming();
        OB->clear(true);
        const int rings = static_cast<int>(std::sqrt(static_cast<double>(state.range(0)) / 8));
        addSphere(rings, 0, 0, 0);
        addSphere(rings, 0.7, 0.3, 0.2);
        platform.dialogAnswers = {{std::string(1, keep)}};
        platform.log.clear();
        state.ResumeTiming();
        polyfab::weldIntersecting(*OB);
    }
    bench::showRate(state, "faces/s", static_cast<double>(state.range(0)));
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t n = 100'000; // the larger run has two spheres of 200,000
    bench::addGrowth("boolean_weld", run<'a'>, n);
    bench::addGrowth("boolean_common", run<'i'>, n);
    return bench::runGrowth(argc, argv);
}
