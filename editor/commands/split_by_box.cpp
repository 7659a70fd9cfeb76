// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/split_by_box.h"

#include "display/box.h"
#include "geometry/projection.h"
#include "tools/asking.h"
#include "tools/split_by_planes.h"

#include <algorithm>

namespace polyfab {
namespace {

constexpr int mostIntervals = 10'000;

void splitAt(int axis, std::vector<double> at) {
    const double* const row = projection.toScreen.row[axis];
    splitByPlanes(*OB, {{row[0], row[1], row[2]}, row[3], std::move(at)});
}

} // namespace

void splitAtBoxMaximum(int axis) {
    if (!hasFacesTo(*OB, "split")) return;
    splitAt(axis, {std::max(along(box.left, axis), along(box.right, axis))});
}

void splitAtBoxIntervals(int axis) {
    int intervals = 0;
    if (!hasFacesTo(*OB, "split")
        || !askCount("how many intervals?", "10", mostIntervals, intervals)) {
        return;
    }
    const double from = along(box.left, axis), to = along(box.right, axis);
    std::vector<double> at;
    for (int i = 0; i < intervals; ++i) at.push_back(from + (to - from) * i / intervals);
    at.push_back(to);
    splitAt(axis, std::move(at));
}

} // namespace polyfab
