// SPDX-License-Identifier: GPL-3.0-or-later
// Faces that other programs show wrongly: re-entrant, far from flat, or with sides that cross.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks for the largest angle and selects exactly the live faces that are bad (isBadPolygon). A
/// note tells how many.
void selectBadFaces(Mesh& mesh);

/// Asks for the largest angle and cuts the selected bad faces into pieces that are not bad, without
/// new points: triangles in the plane of the face's normal, joined again as long as they stay flat
/// and convex. The first piece takes the face's place, the others go to the end. Faces whose sides
/// cross and those that are not finite stay. A note tells of all. Escape leaves the mesh as it was.
void splitBadFaces(Mesh& mesh);

} // namespace polyfab
