// SPDX-License-Identifier: GPL-3.0-or-later
// Faces that share points get points of their own. Nothing moves on the screen; the array of points
// may move. Texture coordinates stay shared.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Of each point that both selected and unselected faces use, the selected faces get a copy.
/// Reports the number of points.
void unweldSelected(Mesh& mesh);

/// Gives each part with a selected face points that no other part uses: it gets a copy of each
/// point that another part has too, also if that one has been through with before. All its faces,
/// unselected ones included, go over to the copy. The parts take their turns, with the progress in
/// the title; an abort request stops before the next part. Reports the number of points.
void unweldSelectedParts(Mesh& mesh);

} // namespace polyfab
