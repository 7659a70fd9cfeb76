// SPDX-License-Identifier: GPL-3.0-or-later
// One polygon cut at parallel planes that all have corners of it where they meet its sides.
#pragma once

#include "tools/edge_cuts.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace polyfab {

/// Where a corner lies: 2 k + 1 on plane k, 2 k below it and above plane k - 1.
struct SlabCorner {
    DraftCorner corner;
    std::int32_t slab;
    Vec3 at;
};
using SlabPolygon = std::vector<SlabCorner>;

/// Appends the pieces between the planes; the polygon itself when there is nothing to cut. No side
/// of it may run through a plane without a corner there. `normal` is that of the planes. False as
/// soon as `stopped` is true, which is asked before each cut.
[[nodiscard]] bool cutAtPlanes(const SlabPolygon& polygon, const Vec3& normal,
                               const std::function<bool()>& stopped,
                               std::vector<SlabPolygon>& pieces);

} // namespace polyfab
