// SPDX-License-Identifier: GPL-3.0-or-later
#include "generators/face_outline.h"

#include "geometry/polygon.h"
#include "mesh/faces.h"

namespace polyfab {

FaceOutline outlineOfCurrent(const Mesh& mesh) {
    const Face& face = mesh.faces[mesh.curface];
    FaceOutline outline;
    for (int k = 0; k < face.n; ++k) {
        const Vec3 at = worldPosition(*face.q[k].p);
        if (isZero(worldPosition(mesh.points[pointAt(mesh, face, k + 1)]) - at)) continue;
        outline.numbers.push_back(pointAt(mesh, face, k));
        outline.places.push_back(at);
    }
    return outline;
}

Vec3 doubleArea(const FaceOutline& outline) {
    return doubledArea(static_cast<int>(outline.size()), [&](int k) {
        return outline.places[static_cast<std::size_t>(k)] - outline.places[0];
    });
}

} // namespace polyfab
