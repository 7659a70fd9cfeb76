// SPDX-License-Identifier: GPL-3.0-or-later
// Polygons in space that should be flat and convex, and their triangles in the plane of their
// normal, which is Newell's.
#pragma once

#include "geometry/orientation.h"
#include "geometry/vec3.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

/// Whether a corner of the polygon turns against its normal, sides wind round more than once or
/// cross, or three corners in a row lie in a plane that is off by more than this angle. Triangles
/// are never bad, and what rounding makes of corners in a line does not count.
[[nodiscard]] bool isBadPolygon(std::span<const Vec3> polygon, double degrees);

/// The polygon seen against its normal; empty when it has none.
[[nodiscard]] std::vector<Vec2> seenFromFront(std::span<const Vec3> polygon);

/// Triangles that cover it there, by corner numbers in their order; empty when sides cross.
[[nodiscard]] std::vector<std::array<std::int32_t, 3>> trianglesOf(std::span<const Vec3> polygon);

} // namespace polyfab
