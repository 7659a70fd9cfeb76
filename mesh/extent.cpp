// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/extent.h"

#include "mesh/faces.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

void add(Extent& extent, const AffineMap& map, const Point& p) {
    const auto near = [](double v) { return std::abs(v) <= farthest; };
    if (!near(p.x) || !near(p.y) || !near(p.z)) return;
    const Vec3 at = map(worldPosition(p));
    if (extent.empty()) extent = {at, at};
    for (int axis = 0; axis < 3; ++axis) {
        along(extent.low, axis) = std::min(along(extent.low, axis), along(at, axis));
        along(extent.high, axis) = std::max(along(extent.high, axis), along(at, axis));
    }
}

} // namespace

Extent extentOfFaces(const Mesh& mesh, const AffineMap& map, bool selectedOnly) {
    Extent extent;
    for (const Face& face : liveFaces(mesh)) {
        if (selectedOnly && !face.selected) continue;
        for (const FaceCorner& corner : corners(face)) {
            if (corner.p != nullptr) add(extent, map, *corner.p);
        }
    }
    return extent;
}

Extent extentOfPoints(const Mesh& mesh, const AffineMap& map) {
    Extent extent;
    for (const Point* p = mesh.points; p != mesh.points + mesh.np; ++p) add(extent, map, *p);
    return extent;
}

} // namespace polyfab
