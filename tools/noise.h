// SPDX-License-Identifier: GPL-3.0-or-later
// Rough surfaces.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks for the most that a point may move and moves each point of a selected face once, to
/// anywhere within that distance with the same likelihood. Points at one position move together.
/// The same mesh gets the same noise. Positions that are not finite stay. A note tells of how many.
void addNoise(Mesh& mesh);

} // namespace polyfab
