// SPDX-License-Identifier: GPL-3.0-or-later
// The least box around the corners of faces or around points.
#pragma once

#include "geometry/affine.h"
#include "mesh/mesh.h"

namespace polyfab {

/// The least box, along the axes of a map's image, around some points.
struct Extent {
    Vec3 low{1, 1, 1};
    Vec3 high{-1, -1, -1};

    [[nodiscard]] bool empty() const { return low.x > high.x; }
    [[nodiscard]] Vec3 middle() const {
        return {low.x / 2 + high.x / 2, low.y / 2 + high.y / 2, low.z / 2 + high.z / 2};
    }
};

/// Positions beyond this do not count in an extent; sums and products of nearer ones stay finite.
inline constexpr double farthest = 1e300;

/// The extent of the mapped corners of all live faces, or of the selected ones.
[[nodiscard]] Extent extentOfFaces(const Mesh& mesh, const AffineMap& map, bool selectedOnly);

/// The extent of all mapped points, whether faces use them or not.
[[nodiscard]] Extent extentOfPoints(const Mesh& mesh, const AffineMap& map);

} // namespace polyfab
