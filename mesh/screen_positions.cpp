// SPDX-License-Identifier: GPL-3.0-or-later
#include "mesh/screen_positions.h"

#include "geometry/projection.h"
#include "mesh/faces.h"

namespace polyfab {

void transformPoints(Mesh& mesh) {
    const AffineMap map = projection.toScreen;
    for (Point *p = mesh.points, *end = p + mesh.np; p != end; ++p) {
        const Vec3 screen = map(worldPosition(*p));
        p->sx = screen.x;
        p->sy = screen.y;
        p->sz = screen.z;
    }
}

} // namespace polyfab
