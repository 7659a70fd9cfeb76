// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/face_angle.h"

#include "geometry/vec3.h"
#include "mesh/faces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace polyfab {
namespace {

Vec3 centroid(const Face& face) {
    Vec3 sum;
    for (const FaceCorner& corner : corners(face)) sum += worldPosition(*corner.p);
    return {sum.x / face.n, sum.y / face.n, sum.z / face.n};
}

} // namespace

Vec3 triangleNormal(const Vec3& a, const Vec3& b, const Vec3& c) {
    constexpr double rounding = 4 * DBL_EPSILON;
    const Vec3 ab = b - a, ac = c - a;
    const double farB = std::max(largestPart(a), largestPart(b)),
                 farC = std::max(largestPart(a), largestPart(c));
    const Vec3 normal = cross(ab, ac);
    const double square = dot(normal, normal);
    if (square > 1e-200 && square < 1e200) {
        const double least = rounding * (largestPart(ab) * farC + largestPart(ac) * farB);
        return largestPart(normal) > least ? normal * (1 / std::sqrt(square)) : Vec3{};
    }
    // The products may have overflowed or vanished.
    const Vec3 scaled = cross(nearOne(ab), nearOne(ac));
    const double least = 4 * rounding * (farC / largestPart(ac) + farB / largestPart(ab));
    return largestPart(scaled) > least ? unit(scaled) : Vec3{};
}

Vec3 faceNormal(const Face& face) {
    if (face.n < 3) return {};
    const auto place = [](const FaceCorner& corner) { return worldPosition(*corner.p); };
    if (face.n == 3) return triangleNormal(place(face.q[0]), place(face.q[1]), place(face.q[2]));
    const Vec3 middle = centroid(face);
    Vec3 sum;
    for (const auto& [from, to] : sides(face)) {
        sum += triangleNormal(place(from), place(to), middle);
    }
    // Unit vectors that cancel each other leave their rounding.
    return largestPart(sum) > 4 * DBL_EPSILON * face.n ? unit(sum) : Vec3{};
}

double angleOpposite(double opposite, double side1, double side2) {
    const double cosine = (side1 + side2 - opposite) / (2 * std::sqrt(side1) * std::sqrt(side2));
    return std::acos(std::clamp(cosine, -1.0, 1.0));
}

double angleBetween(const Vec3& normal1, const Vec3& normal2) {
    if (isZero(normal1) || isZero(normal2)) return 0;
    const Vec3 third = normal1 - normal2;
    const double a = dot(normal1, normal1), b = dot(normal2, normal2), c = dot(third, third);
    return angleOpposite(c, a, b) * 180 / pi;
}

} // namespace polyfab
