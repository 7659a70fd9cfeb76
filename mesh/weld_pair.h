// SPDX-License-Identifier: GPL-3.0-or-later
// Welding one point onto another.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// All corners at the point `from` go to the point `onto`, and the faces that had one are tidied
/// thoroughly; `from` stays, unused. The current face is none when it is gone. Gives the corners
/// moved, and sets `changed` if there are any. The arrays of faces and corners move.
int weldPair(Mesh& mesh, int from, int onto);

} // namespace polyfab
