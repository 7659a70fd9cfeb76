// SPDX-License-Identifier: GPL-3.0-or-later
// New faces close holes: ways along loose edges that come back to where they start.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

// Both make the new faces out of the points of the rim: one where it is flat and convex, otherwise
// triangles of little area. They run against the faces around them, are selected, have the group
// and the material that most of those have, and no texture coordinates. What would lie on a face
// that is there already, on an edge of two faces or not be finite is left. A note tells of what was
// filled and what was left. Escape leaves the mesh as it was.

/// Fills the hole at the current edge or, when that is not loose, the smallest one at the current
/// vertex; a box says so when neither is at a hole.
void fillHole(Mesh& mesh);

/// Asks for the largest number of edges and fills the holes of at most so many that lie between
/// selected faces.
void fillHoles(Mesh& mesh);

} // namespace polyfab
