// SPDX-License-Identifier: GPL-3.0-or-later
// make_grid PATH [TRIANGLES]: writes the benchmark grid (a million triangles) as an OBJ file.
#include "bench/grid.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if ((argc != 2 && argc != 3) || *argv[1] == '-') {
        std::fprintf(stderr, "usage: make_grid PATH [TRIANGLES]\n");
        return 2;
    }
    const long long triangles = argc == 3 ? std::atoll(argv[2]) : 1'000'000;
    if (triangles > 0 && polyfab::bench::writeGridObj(argv[1], triangles)) return 0;
    std::fprintf(stderr, "make_grid: can't write %s\n", argv[1]);
    return 1;
}
