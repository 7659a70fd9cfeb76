// SPDX-License-Identifier: GPL-3.0-or-later
// Sums of squared distances to planes, as a function of the place (Garland and Heckbert, "Surface
// simplification using quadric error metrics", 1997).
#pragma once

#include "geometry/vec3.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace polyfab {

struct Quadric {
    double xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0; ///< what is squared
    double x = 0, y = 0, z = 0;                            ///< half of what is linear
    double constant = 0;
    double weight = 0; ///< of all that was added

    /// The plane through the place at right angles to a unit vector.
    void addPlane(const Vec3& normal, const Vec3& place, double w) {
        const double d = -dot(normal, place);
        xx += w * normal.x * normal.x;
        xy += w * normal.x * normal.y;
        xz += w * normal.x * normal.z;
        yy += w * normal.y * normal.y;
        yz += w * normal.y * normal.z;
        zz += w * normal.z * normal.z;
        x += w * d * normal.x;
        y += w * d * normal.y;
        z += w * d * normal.z;
        constant += w * d * d;
        weight += w;
    }

    void add(const Quadric& other) {
        xx += other.xx;
        xy += other.xy;
        xz += other.xz;
        yy += other.yy;
        yz += other.yz;
        zz += other.zz;
        x += other.x;
        y += other.y;
        z += other.z;
        constant += other.constant;
        weight += other.weight;
    }

    [[nodiscard]] double at(const Vec3& p) const {
        const double rx = xx * p.x + xy * p.y + xz * p.z + 2 * x;
        const double ry = xy * p.x + yy * p.y + yz * p.z + 2 * y;
        const double rz = xz * p.x + yz * p.y + zz * p.z + 2 * z;
        return std::abs(rx * p.x + ry * p.y + rz * p.z + constant);
    }

    /// The place where it is least, unless that can't be told from rounding.
    [[nodiscard]] std::optional<Vec3> least() const {
        const double cxx = yy * zz - yz * yz, cxy = xz * yz - xy * zz, cxz = xy * yz - xz * yy;
        const double determinant = xx * cxx + xy * cxy + xz * cxz;
        const double trace = xx + yy + zz;
        if (!(std::abs(determinant) > 1e-13 * trace * trace * trace)) return std::nullopt;
        const double cyy = xx * zz - xz * xz, cyz = xy * xz - xx * yz, czz = xx * yy - xy * xy;
        const double f = -1 / determinant;
        return Vec3{f * (cxx * x + cxy * y + cxz * z), f * (cxy * x + cyy * y + cyz * z),
                    f * (cxz * x + cyz * y + czz * z)};
    }

    /// The part of the way from one place to the other, 0 to 1, where it is least.
    [[nodiscard]] double leastBetween(const Vec3& from, const Vec3& to) const {
        const Vec3 way = to - from;
        const Vec3 slope{xx * from.x + xy * from.y + xz * from.z + x,
                         xy * from.x + yy * from.y + yz * from.z + y,
                         xz * from.x + yz * from.y + zz * from.z + z};
        const Vec3 bend{xx * way.x + xy * way.y + xz * way.z, xy * way.x + yy * way.y + yz * way.z,
                        xz * way.x + yz * way.y + zz * way.z};
        const double curve = dot(bend, way);
        return curve > 0 ? std::clamp(-dot(slope, way) / curve, 0.0, 1.0) : 0.5;
    }
};

/// A sum of squared distances to places.
struct Spread {
    Vec3 sum;           ///< of places by their weights
    double squares = 0; ///< of their squared lengths
    double weight = 0;

    void addPlace(const Vec3& place, double w) {
        sum += place * w;
        squares += w * dot(place, place);
        weight += w;
    }
    void add(const Spread& other) {
        sum += other.sum;
        squares += other.squares;
        weight += other.weight;
    }
};

/// The quadric and some of the spread.
[[nodiscard]] inline Quadric mixed(Quadric quadric, const Spread& spread, double part) {
    const double w = part * spread.weight;
    quadric.xx += w;
    quadric.yy += w;
    quadric.zz += w;
    quadric.x -= part * spread.sum.x;
    quadric.y -= part * spread.sum.y;
    quadric.z -= part * spread.sum.z;
    quadric.constant += part * spread.squares;
    return quadric;
}

} // namespace polyfab
