// SPDX-License-Identifier: GPL-3.0-or-later
// Rectangular blocks along the axes.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

namespace polyfab {

/// Adds a selected face on these four positions, in the current group and material. A point that
/// stands exactly there is used, otherwise one is added. Without room the face is missing, after a
/// message box.
void addQuad(Mesh& mesh, const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d);

/// Adds the block that the two corners span, each pair of coordinates in either order: six faces
/// that look outwards. Where both corners agree in one coordinate it is a single face, the lower
/// side; where they agree in more, nothing.
void makeBlock(Mesh& mesh, double x1, double x2, double y1, double y2, double z1, double z2);

/// Shows the two settable points, the current group and the current material in a dialog and makes
/// a block of what the user leaves in it; a field that is no number leaves its coordinate as it
/// was. Escape accepts. The mesh counts as changed even after cancel.
void askAndMakeBlock(Mesh& mesh);

} // namespace polyfab
