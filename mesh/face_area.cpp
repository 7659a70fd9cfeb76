// SPDX-License-Identifier: GPL-3.0-or-later
// The corners are taken from the first one and in units of the extent, so that neither the place
// nor the size of the face can make the products overflow or vanish.
#include "mesh/face_area.h"

#include "geometry/vec3.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace polyfab {
namespace {

Vec3 between(const Point& from, const Point& to) {
    return {to.x - from.x, to.y - from.y, to.z - from.z};
}

} // namespace

bool hasNoArea(const Face& face) {
    double extent = 0;
    double farthest = 0; // from the origin: it decides how coarsely positions are rounded
    for (const FaceCorner* corner = face.q; corner != face.q + face.n; ++corner) {
        const Point& p = *corner->p;
        const double away = largestPart({p.x, p.y, p.z});
        if (!std::isfinite(away)) return false;
        farthest = std::max(farthest, away);
        extent = std::max(extent, largestPart(between(*face.q->p, p)));
    }
    if (extent == 0) return true;

    Vec3 area;
    for (int k = 2; k < face.n; ++k) {
        const Vec3 a = between(*face.q->p, *face.q[k - 1].p);
        const Vec3 b = between(*face.q->p, *face.q[k].p);
        const Vec3 u{a.x / extent, a.y / extent, a.z / extent};
        const Vec3 v{b.x / extent, b.y / extent, b.z / extent};
        area.x += u.y * v.z - u.z * v.y;
        area.y += u.z * v.x - u.x * v.z;
        area.z += u.x * v.y - u.y * v.x;
    }
    const double rounding = 4 * DBL_EPSILON * face.n * (farthest / extent);
    return std::hypot(area.x, area.y, area.z) <= std::max(1e-12, rounding);
}

} // namespace polyfab
