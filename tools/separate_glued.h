// SPDX-License-Identifier: GPL-3.0-or-later
// Surfaces that hang together at single points come apart there.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// The faces at a point are one surface there when a chain of faces leads from each to each, every
/// two in a row sharing an edge that ends at the point. Where there are several surfaces, the one
/// with the first face keeps the point and each of the others gets a copy. Reports the number of
/// points at which that was so. Nothing moves on the screen; the arrays may move.
void separateGluedSurfaces(Mesh& mesh);

} // namespace polyfab
