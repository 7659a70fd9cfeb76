// SPDX-License-Identifier: GPL-3.0-or-later
// The corners of the current face, for objects that are made from it.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// Those that are not where the next one is, in order.
struct FaceOutline {
    std::vector<std::int32_t> numbers; ///< the points in the mesh
    std::vector<Vec3> places;
    [[nodiscard]] std::size_t size() const { return places.size(); }
    [[nodiscard]] std::size_t next(std::size_t i) const { return i + 1 == size() ? 0 : i + 1; }
};

/// There must be a live current face.
[[nodiscard]] FaceOutline outlineOfCurrent(const Mesh& mesh);

/// Twice the sum of the areas of the triangles from the first corner, as a vector that shows where
/// the face runs anticlockwise.
[[nodiscard]] Vec3 doubleArea(const FaceOutline& outline);

} // namespace polyfab
