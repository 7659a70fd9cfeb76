// SPDX-License-Identifier: GPL-3.0-or-later
// Vectors: sums, products, and unit vectors that are finite whatever they are made from.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace polyfab {

struct Vec3 {
    double x = 0, y = 0, z = 0;
};

/// A coordinate by the number of its axis: 0 x, 1 y, 2 z.
[[nodiscard]] inline double& along(Vec3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}
[[nodiscard]] inline double along(const Vec3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

[[nodiscard]] inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
[[nodiscard]] inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
[[nodiscard]] inline Vec3 operator*(const Vec3& v, double factor) {
    return {v.x * factor, v.y * factor, v.z * factor};
}
inline Vec3& operator+=(Vec3& a, const Vec3& b) { return a = a + b; }

[[nodiscard]] inline double dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
[[nodiscard]] inline Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
/// The square of the distance between two positions, which may be anything with an x, y and z. Not
/// a number when a coordinate of either is none, or when both are infinite in the same direction.
template <typename A, typename B>
[[nodiscard]] double squaredDistance(const A& a, const B& b) {
    const Vec3 way{a.x - b.x, a.y - b.y, a.z - b.z};
    return dot(way, way);
}

[[nodiscard]] inline bool isZero(const Vec3& v) { return v.x == 0 && v.y == 0 && v.z == 0; }

/// The largest coordinate by size.
[[nodiscard]] inline double largestPart(const Vec3& v) {
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

/// The vector by a power of two that brings its largest part near 1; unchanged when there is none.
[[nodiscard]] inline Vec3 nearOne(const Vec3& v) {
    const double most = largestPart(v);
    if (!(most > 0 && most <= DBL_MAX)) return v;
    const int exponent = std::ilogb(most);
    return {std::scalbn(v.x, -exponent), std::scalbn(v.y, -exponent), std::scalbn(v.z, -exponent)};
}

/// The vector scaled to length 1. Zero stays zero, and what is not finite becomes zero.
[[nodiscard]] inline Vec3 unit(const Vec3& v) {
    double square = dot(v, v);
    // Far from 1 the square loses digits, overflows or vanishes.
    if (square > 1e-200 && square < 1e200) return v * (1 / std::sqrt(square));
    const Vec3 scaled = nearOne(v);
    square = dot(scaled, scaled);
    return square > 0 && square <= DBL_MAX ? scaled * (1 / std::sqrt(square)) : Vec3{};
}

/// The unit vector at right angles to both, or zero when they are parallel, zero or not finite.
[[nodiscard]] inline Vec3 unitCross(const Vec3& a, const Vec3& b) {
    const Vec3 product = cross(a, b);
    const double square = dot(product, product);
    if (square > 1e-200 && square < 1e200) return product * (1 / std::sqrt(square));
    return unit(cross(nearOne(a), nearOne(b)));
}

} // namespace polyfab
