// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/boolean/edge_sides.h"

#include <cstddef>
#include <utility>

namespace polyfab::boolean {

void EdgeSides::sort() {
    if (std::exchange(sorted, true)) return;
    std::int32_t most = -1;
    for (const EdgeSide& side : sides) most = std::max(most, side.low);
    std::vector<std::size_t> start(static_cast<std::size_t>(most + 2));
    for (const EdgeSide& side : sides) ++nth(start, side.low + 1);
    for (std::size_t i = 1; i < start.size(); ++i) start[i] += start[i - 1];
    std::vector<EdgeSide> placed(sides.size());
    for (const EdgeSide& side : sides) placed[nth(start, side.low)++] = side;
    sides.swap(placed);
    std::size_t first = 0;
    for (std::int32_t low = 0; low <= most; ++low) {
        const auto at = [&](std::size_t i) {
            return sides.begin() + static_cast<std::ptrdiff_t>(i);
        };
        std::stable_sort(at(first), at(nth(start, low)),
                         [](const EdgeSide& a, const EdgeSide& b) { return a.high < b.high; });
        first = nth(start, low);
    }
}

} // namespace polyfab::boolean
