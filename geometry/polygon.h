// SPDX-License-Identifier: GPL-3.0-or-later
// Polygons in space, given by a function from the number of a corner to its position.
#pragma once

#include "geometry/vec3.h"

namespace polyfab {

/// Twice the vector area of a polygon of n corners, by Newell's method (Sutherland, Sproull and
/// Schumacker, "A characterization of ten hidden-surface algorithms", 1974): along its normal,
/// towards the side from which the corners are seen anticlockwise. `from(k)` is the way from corner
/// 0 to corner k: near the polygon the products stay small, and the two sides at corner 0 drop out.
template <typename From>
[[nodiscard]] Vec3 doubledArea(int n, From from) {
    Vec3 area;
    for (int k = 2; k < n; ++k) area += cross(from(k - 1), from(k));
    return area;
}

} // namespace polyfab
