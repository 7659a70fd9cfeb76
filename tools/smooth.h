// SPDX-License-Identifier: GPL-3.0-or-later
// Points are moved to the average of their neighbours, that is the other ends of their edges. A
// neighbour counts once for each face that has the edge.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Moves each point that lies only in selected faces, and behind the average of its neighbours in
/// them, seen along its normal, to that average. Points that stand out stay. Collects garbage
/// first.
void smoothDents(Mesh& mesh);

/// Moves each point that no unselected face uses to the average of its neighbours on the screen,
/// with `axis` ('x', 'y' or 'z'; 0: all) only along that axis of the screen.
void smoothView(Mesh& mesh, char axis);

/// Asks for the axis that workbench.smoothingAxis keeps for smoothView.
void askSmoothingAxis();

} // namespace polyfab
