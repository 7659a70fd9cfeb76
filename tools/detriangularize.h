// SPDX-License-Identifier: GPL-3.0-or-later
// Pairs of triangles are joined into quads. Two triangles can be a pair when both are selected and
// in the same group and material, when they have a side in common that they run in opposite ways,
// with the same texture coordinates at both its ends, and when the angle between them is at most
// one that is asked for.
//
// Both tools collect garbage first. At the end they report how many faces there were and are, offer
// to remove the normals and run the edge pass. With `silent` they do nothing of what comes at the
// end: the faces that went and their corners stay in the mesh until the next collection.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Joins triangles that follow each other in the mesh, as a file has them that was written from
/// quads: a triangle with the next one if it can, else that one with the one after it.
void detriquick(Mesh& mesh, bool silent);

/// The triangles take their turns in the order of faces. Each is joined with the first one behind
/// it that makes a pair with it and whose quad is nearly right-angled at both ends of the side that
/// they share; how nearly is asked for. The triangles left to look at are counted down in the
/// title, where the last number stays if `silent`.
void detrithorough(Mesh& mesh, bool silent);

} // namespace polyfab
