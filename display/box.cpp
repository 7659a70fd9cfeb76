// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/box.h"

#include "geometry/affine.h"
#include "geometry/projection.h"
#include "mesh/extent.h"
#include "mesh/stale.h"

#include <algorithm>

namespace polyfab {
namespace {

/// Pixels that a corner may be outside: where a box was put around it, the last bits of both must
/// not decide after the picture was moved and scaled.
constexpr double slack = 1e-6;

bool between(double position, double a, double b) {
    return position >= std::min(a, b) - slack && position <= std::max(a, b) + slack;
}

} // namespace

Box carried(Box moved, const View& from, const View& to) {
    for (Vec3* const corner : {&moved.left, &moved.right}) {
        for (int i = 0; i < 3; ++i) {
            const double pixels = along(*corner, i) - along(from.offset, i);
            along(*corner, i) = along(to.offset, i) + pixels * (to.scale / from.scale);
        }
    }
    return moved;
}

bool inBox(const Face& face) {
    return std::all_of(face.q, face.q + face.n, [](const FaceCorner& corner) {
        const Point& p = *corner.p;
        return between(p.sx, box.left.x, box.right.x) && between(p.sy, box.left.y, box.right.y)
               && between(p.sz, box.left.z, box.right.z);
    });
}

bool fitBox(const Mesh& mesh, bool selectedOnly) {
    const Extent extent = extentOfFaces(mesh, projection.toScreen, selectedOnly);
    if (extent.empty()) return false;
    box = {extent.low, extent.high};
    stale.picture = true;
    return true;
}

} // namespace polyfab
