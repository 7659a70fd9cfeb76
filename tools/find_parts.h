// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of the mesh: sets of faces that hang together through edges.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Numbers the parts of a sound mesh anew, in the order of their first faces, and makes the part
/// table, every part selected. Faces are joined by an edge that exactly two faces have, unless they
/// meet there at an angle of `maxAngle` degrees or more; with 0 the angle does not matter, and a
/// negative one leaves every face by itself. Deleted faces keep their numbers.
///
/// All parts behind the 32,767th share its number; a message then tells how many there are. The
/// selection of faces stays. Without memory for its tables it does nothing, after a message box.
void findparts(Mesh& mesh, double maxAngle);

/// Asks for the angle, collects garbage and finds the parts. Cancel does nothing.
void askAndFindParts(Mesh& mesh);

} // namespace polyfab
