// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/flat_polygon.h"

#include "geometry/ear_clipping.h"
#include "geometry/frame.h"
#include "geometry/polygon.h"
#include "mesh/face_angle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace polyfab {
namespace {

/// From the first corner to each, in units of the extent.
std::vector<Vec3> scaled(std::span<const Vec3> polygon) {
    double extent = 0;
    for (const Vec3& at : polygon) extent = std::max(extent, largestPart(at - polygon[0]));
    std::vector<Vec3> ways;
    ways.reserve(polygon.size());
    for (const Vec3& at : polygon) {
        const Vec3 way = at - polygon[0];
        ways.push_back({way.x / extent, way.y / extent, way.z / extent});
    }
    return ways;
}

/// Zero for a polygon without an area.
Vec3 normalOf(const std::vector<Vec3>& ways) {
    const Vec3 area = doubledArea(static_cast<int>(ways.size()),
                                  [&](int k) { return ways[static_cast<std::size_t>(k)]; });
    return largestPart(area) > 1e-12 ? unit(area) : Vec3{};
}

} // namespace

bool isBadPolygon(std::span<const Vec3> polygon, double degrees) {
    const std::size_t n = polygon.size();
    if (n < 4) return false;
    const Vec3 normal = normalOf(scaled(polygon));
    const double least = std::max(0.0, std::cos(degrees * pi / 180));
    double turned = 0;
    for (std::size_t k = 0; k < n; ++k) {
        const Vec3 &a = polygon[k == 0 ? n - 1 : k - 1], &b = polygon[k],
                   &c = polygon[k + 1 == n ? 0 : k + 1];
        const Vec3 corner = triangleNormal(a, b, c);
        if (isZero(corner)) continue;
        const double cosine = dot(corner, normal);
        // A flat angle to within rounding is no more than 0 degrees.
        if (!(cosine > 0) || cosine < least - 1e-15) return true;
        const Vec3 in = unit(b - a), out = unit(c - b);
        if (n > 4) turned += std::acos(std::clamp(dot(in, out), -1.0, 1.0));
    }
    return turned > 3 * pi;
}

std::vector<Vec2> seenFromFront(std::span<const Vec3> polygon) {
    const std::vector<Vec3> ways = scaled(polygon);
    const Vec3 normal = normalOf(ways);
    std::vector<Vec2> seen;
    if (isZero(normal)) return seen;
    const Frame frame = frameAlong(normal);
    seen.reserve(ways.size());
    for (const Vec3& way : ways) seen.push_back({dot(way, frame.u), dot(way, frame.v)});
    return seen;
}

std::vector<std::array<std::int32_t, 3>> trianglesOf(std::span<const Vec3> polygon) {
    if (polygon.size() == 3) return {{0, 1, 2}};
    const std::vector<Vec2> seen = seenFromFront(polygon);
    if (seen.empty() || sidesCross(seen)) return {};
    return clipEars(seen);
}

} // namespace polyfab
