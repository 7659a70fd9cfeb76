// SPDX-License-Identifier: GPL-3.0-or-later
// Faces are taken apart into triangles or quads, without regard to where they bend inwards. The
// pieces are selected and have everything else from the face that they come from.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

// The next two delete faces of fewer than 3 corners and pack the arrays of faces and corners
// without gaps: unselected faces first, then the pieces of the selected ones. A current face stays
// current unless it is taken apart. Without memory there is a message box and nothing changes.

/// Makes fans of triangles around the first corners of all selected faces.
void triangularize(Mesh& mesh);

/// Cuts quads off the selected faces, all with the face's first corner in common, until a triangle
/// or nothing is left. Then runs the edge pass.
void breakupfaces(Mesh& mesh);

/// Appends a fan of triangles around the first corner of this face, which is deleted itself. A
/// triangle stays as it is; a face of fewer than 3 corners is deleted, for which `changed` is not
/// set. The arrays of faces and corners may move; without room for the fan the mesh is what a
/// failed growth leaves.
void fanface(Mesh& mesh, int face);

} // namespace polyfab
