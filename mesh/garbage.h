// SPDX-License-Identifier: GPL-3.0-or-later
// Tidying of single faces, and the collection of everything that the mesh does not use any more.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Takes repeated neighbours out of the corner list of a face, and with `thorough` also spikes (a
/// way A, B, A becomes A) and splits the face wherever it passes a point twice: a new face at the
/// end, with the attributes of this one, gets the loop. Neighbours: the last corner is one of the
/// first. A face left with fewer than 3 corners is deleted.
///
/// Gives the corners and spikes that were taken out, 1 for a face that was deleted and 0 for one
/// that was deleted before. Sets `changed` when there was anything to do. A split moves the arrays
/// of faces and corners; without room for it the mesh is what a failed growth leaves.
int tidyFace(Mesh& mesh, int face, bool thorough);

/// Tidies every face thoroughly, then drops deleted faces and all points, corners, normals, texture
/// coordinates, groups and materials that no face uses; the survivors keep their order. Every
/// index, pointer and capacity may be another one afterwards. The current face stays current if it
/// survives; there is no current vertex or texture coordinate then. Areas and parts stay as they
/// are, and a mesh without groups or materials gets a "default" one (the material white).
///
/// False after a message box: the mesh is faulty and as it was, or faulty after the tidying, or
/// memory ran out, and it is merely tidied.
bool collectGarbage(Mesh& mesh);

} // namespace polyfab
