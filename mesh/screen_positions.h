// SPDX-License-Identifier: GPL-3.0-or-later
// Where the points of a mesh are on the screen.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Works out the screen positions of all points from their world positions.
void transformPoints(Mesh& mesh);

} // namespace polyfab
