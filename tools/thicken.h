// SPDX-License-Identifier: GPL-3.0-or-later
// Thickness added to the selected surface.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks for a thickness, a step, how often to smooth the normals, and what becomes of the border.
/// Then moves the points of the selected faces out, step by step until the thickness is reached or
/// passed, along normals that are found and smoothed afresh for each step; the progress is in the
/// title. Points on the border to unselected faces move too, or go back to where they were, or are
/// left to the unselected faces with a wall of quads, a part of its own, between there and the
/// moved border.
///
/// Collects garbage first, and after walls were built. Steps that would never end, or not within a
/// billion passes over the mesh, are refused by a message. Without room for the walls the mesh is
/// what a failed growth leaves.
void thicken(Mesh& mesh);

} // namespace polyfab
