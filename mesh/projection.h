// SPDX-License-Identifier: GPL-3.0-or-later
// The affine map between world and screen positions that new points are placed with. The display
// sets it; the mesh only applies it.
#pragma once

namespace polyfab {

struct Vec3 {
    double x = 0, y = 0, z = 0;
};

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

struct Projection {
    AffineMap toScreen; ///< world -> (horizontal pixel, vertical pixel, depth)
    AffineMap toWorld;  ///< its inverse
};

inline Projection projection;

} // namespace polyfab
