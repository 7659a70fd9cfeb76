// SPDX-License-Identifier: GPL-3.0-or-later
// Faces split where parallel planes run through them.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <vector>

namespace polyfab {

/// The planes on which normal . p + offset is one of these numbers.
struct ParallelPlanes {
    Vec3 normal;
    double offset = 0;
    std::vector<double> at;
};

/// Splits the selected faces that lie on both sides of a plane, re-entrant ones into as many pieces
/// as it takes; the first piece takes the face's place, the others go to the end. Edges that a
/// plane cuts get one point there for all faces on them, unselected ones too. A point within 1e-9
/// of the extent of the selected faces lies on the plane. Faces that are not finite are not split.
/// A note tells of all; what would make more than 20 million points is refused in a box. Escape
/// leaves the mesh as it was. May throw std::bad_alloc.
void splitByPlanes(Mesh& mesh, ParallelPlanes planes);

} // namespace polyfab
