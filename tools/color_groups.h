// SPDX-License-Identifier: GPL-3.0-or-later
// Groups by colour.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Puts the selected faces into groups named after the colour of their material, "color_RRGGBB",
/// which are made where there are none. A note tells how many colours there are. Where groups run
/// out a box says so, and nothing is done.
void groupByColor(Mesh& mesh);

} // namespace polyfab
