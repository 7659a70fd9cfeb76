// SPDX-License-Identifier: GPL-3.0-or-later
// In space the corners are taken from the first one and in units of the extent, so that neither the
// place nor the size of the face can make the products overflow or vanish.
#include "mesh/face_area.h"

#include "geometry/polygon.h"
#include "mesh/faces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace polyfab {
namespace {

/// From the first corner of the face to this one.
Vec3 wayTo(const Face& face, int corner) {
    return worldPosition(*face.q[corner].p) - worldPosition(*face.q->p);
}

double extentOf(const Face& face) {
    double extent = 0;
    for (int k = 1; k < face.n; ++k) extent = std::max(extent, largestPart(wayTo(face, k)));
    return extent;
}

} // namespace

Vec3 scaledArea(const Face& face) {
    const double scale = 1 / extentOf(face);
    return doubledArea(face.n, [&](int k) { return wayTo(face, k) * scale; });
}

bool hasNoArea(const Face& face) {
    double farthest = 0; // from the origin: it decides how coarsely positions are rounded
    for (const FaceCorner& corner : corners(face)) {
        const double away = largestPart(worldPosition(*corner.p));
        if (!std::isfinite(away)) return false;
        farthest = std::max(farthest, away);
    }
    const double extent = extentOf(face);
    if (extent == 0) return true;
    // Divided: of the largest extents the inverse is short of digits, which only a drawing can
    // bear.
    const Vec3 area = doubledArea(face.n, [&](int k) {
        const Vec3 way = wayTo(face, k);
        return Vec3{way.x / extent, way.y / extent, way.z / extent};
    });
    const double rounding = 4 * DBL_EPSILON * face.n * (farthest / extent);
    return std::hypot(area.x, area.y, area.z) <= std::max(1e-12, rounding);
}

double screenArea(const Face& face, double Point::*across) {
    double area = 0;
    for (const auto& [from, to] : sides(face)) {
        area -= (to.p->*across - from.p->*across) * (to.p->sy + from.p->sy) / 2;
    }
    return area;
}

} // namespace polyfab
