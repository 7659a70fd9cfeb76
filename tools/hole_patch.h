// SPDX-License-Identifier: GPL-3.0-or-later
// Triangles that close a loop in space.
#pragma once

#include "geometry/vec3.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace polyfab {

struct LoopToPatch {
    std::span<const Vec3> at; ///< its corners; finite
    /// Whether no new edge may run between these corners, which do not follow each other.
    std::function<bool(std::int32_t, std::int32_t)> taken;
    /// Asked now and then: whether to give up.
    std::function<bool()> stopped;
};

using PatchTriangle = std::array<std::int32_t, 3>; ///< corners in the order of the loop

/// Whether the loop has an area and is flat but for a millionth of its extent.
[[nodiscard]] bool isFlat(std::span<const Vec3> loop);

/// Cuts the loop into triangles: a flat one in its plane, others with the least area, slivers
/// counting for more than they have, for which the time grows with the cube of the corners; a loop
/// of more than 160 corners is cut into coarse triangles first, and the chains between their
/// corners one by one. Empty when that takes an edge that is taken, or when it was stopped. May
/// throw std::bad_alloc.
[[nodiscard]] std::vector<PatchTriangle> patchLoop(const LoopToPatch& loop);

} // namespace polyfab
