// SPDX-License-Identifier: GPL-3.0-or-later
// Short edges of the selected faces shrink to points.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks for the largest length and goes through the selected faces again and again until no edge is
/// left that is at most that long. In each pass the first such edge of a face goes: its end moves
/// to its middle, and all corners on its beginning, whatever face they belong to, go over to the
/// end. The faces after it see that at once. Corners that repeat a point, and the points that are
/// on no corner now, are left to the next collection.
///
/// The title shows the number of edges after each pass, and on the way now and then the pass and
/// the corners that are left. An abort request before any edge goes ends the tool.
void weldedges(Mesh& mesh);

} // namespace polyfab
