// SPDX-License-Identifier: GPL-3.0-or-later
// Fewer faces of nearly the same shape.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks how many of the selected faces to keep and how far the surface may move, and makes
/// triangles of them whose edges shrink, those first whose loss changes the shape the least.
/// Borders, texture seams, borders of materials and groups and sharp creases keep their course;
/// unselected faces and faces none of whose triangles changed stay as they are. Texture coordinates
/// and normals follow. Collects garbage in the end. A note tells what came of it. Escape leaves the
/// mesh as it was.
void thinOut(Mesh& mesh);

} // namespace polyfab
