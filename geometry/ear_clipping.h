// SPDX-License-Identifier: GPL-3.0-or-later
// Polygons in the plane, cut into triangles.
#pragma once

#include "geometry/orientation.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

/// Whether two sides of the polygon cross at a point that is inside of both.
[[nodiscard]] bool sidesCross(std::span<const Vec2> polygon);

/// Triangles that cover a polygon, which runs anticlockwise, by the numbers of its corners in their
/// order: two fewer than it has corners, none of them without area or turned over, the best shaped
/// ones first. Corners may touch each other and sides. Empty when there are none such, as when
/// sides cross. About linear in time but for the worst of shapes.
[[nodiscard]] std::vector<std::array<std::int32_t, 3>> clipEars(std::span<const Vec2> polygon);

/// The same, but always two fewer than it has corners, which must be three and more and finite:
/// corners in a line and spikes give triangles without area, and where sides cross some are turned
/// over.
[[nodiscard]] std::vector<std::array<std::int32_t, 3>>
clipEarsAnyhow(std::span<const Vec2> polygon);

} // namespace polyfab
