// SPDX-License-Identifier: GPL-3.0-or-later
// Affine maps: building and combining them. Axes are numbered 0 x, 1 y, 2 z.
#pragma once

#include "geometry/vec3.h"

namespace polyfab {

/// Rows of a 3 x 4 matrix: three factors, then the offset.
struct AffineMap {
    double row[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

    Vec3 operator()(const Vec3& v) const {
        const auto line = [&](const double* r) {
            return r[0] * v.x + r[1] * v.y + r[2] * v.z + r[3];
        };
        return {line(row[0]), line(row[1]), line(row[2])};
    }
};

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

} // namespace polyfab
