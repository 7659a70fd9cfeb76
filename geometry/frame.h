// SPDX-License-Identifier: GPL-3.0-or-later
// Three directions at right angles around a given one.
#pragma once

#include "geometry/vec3.h"

namespace polyfab {

/// Unit vectors at right angles to each other; seen from the end of w, v is a quarter turn
/// anticlockwise of u.
struct Frame {
    Vec3 u, v, w;
};

/// The frame whose w has this direction, which must be finite and not zero. Along an axis of the
/// world all three are exact.
[[nodiscard]] inline Frame frameAlong(const Vec3& direction) {
    // Divided and not multiplied by the reciprocal, which is not exact.
    const auto toUnit = [](const Vec3& v) {
        const double length = std::sqrt(dot(v, v));
        return Vec3{v.x / length, v.y / length, v.z / length};
    };
    const Vec3 w = toUnit(nearOne(direction));
    const double most = largestPart(w);
    Vec3 other;
    for (int axis = 0; axis < 3; ++axis) {
        if (std::abs(along(w, axis)) != most) continue;
        along(other, (axis + 1) % 3) = 1;
        break;
    }
    const Vec3 u = toUnit(other - w * dot(w, other));
    return {u, cross(w, u), w};
}

} // namespace polyfab
