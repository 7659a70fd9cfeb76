// SPDX-License-Identifier: GPL-3.0-or-later
// Building and combining affine maps. Axes are numbered 0 x, 1 y, 2 z.
#pragma once

#include "mesh/mesh.h"
#include "mesh/projection.h"

namespace polyfab {

[[nodiscard]] inline double& along(Vec3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}
[[nodiscard]] inline double along(const Vec3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

/// First `inner`, then `outer`.
[[nodiscard]] AffineMap product(const AffineMap& outer, const AffineMap& inner);

/// The way back, by cofactors. The map must have an inverse.
[[nodiscard]] AffineMap inverseOf(const AffineMap& map);

/// Below zero for a map that turns things into their mirror images.
[[nodiscard]] double determinantOf(const AffineMap& map);

/// Magnifies along the three axes.
[[nodiscard]] AffineMap scaling(const Vec3& factors);

/// Turns about an axis through the origin: a right-handed screw driven along it turns like that.
[[nodiscard]] AffineMap rotation(int axis, double radians);

/// The map without its offset, moved so that it leaves the pivot where it is.
[[nodiscard]] AffineMap about(const Vec3& pivot, const AffineMap& map);

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
