// SPDX-License-Identifier: GPL-3.0-or-later
// One polygon cut at parallel planes that all have corners of it where they meet its sides.
#pragma once

#include "tools/edge_cuts.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// Where a corner lies: 2 k + 1 on plane k, 2 k below it and above plane k - 1.
struct SlabCorner {
    DraftCorner corner;
    std::int32_t slab;
    Vec3 at;
};
using SlabPolygon = std::vector<SlabCorner>;

/// The pieces between the planes; one, the polygon itself, when there is nothing to cut. No side
/// of it may run through a plane without a corner there. `normal` is that of the planes.
[[nodiscard]] std::vector<SlabPolygon> cutAtPlanes(const SlabPolygon& polygon, const Vec3& normal);

} // namespace polyfab
