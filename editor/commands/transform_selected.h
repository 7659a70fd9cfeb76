// SPDX-License-Identifier: GPL-3.0-or-later
// Transforms of the selected faces as a whole.
#pragma once

#include "geometry/affine.h"
#include "mesh/mesh.h"

namespace polyfab {

/// Maps the points of all selected faces, each once, and their normals. A map that mirrors also
/// turns these faces over, so that their outside stays outside. Unselected faces keep their normals
/// and the order of their corners, but follow with the points that they share. The map must have an
/// inverse. False, and nothing done, when no face is selected.
bool transformSelected(Mesh& mesh, const AffineMap& map);

/// Maps the normals of the selected faces like planes of an object that the map transforms; each
/// keeps its length. Those that unselected faces use too are copied first; when there is no room
/// for that, growNormals has said so and left the mesh as a failed growth leaves it.
void transformSelectedNormals(Mesh& mesh, const AffineMap& map);

} // namespace polyfab
