// SPDX-License-Identifier: GPL-3.0-or-later
// What the panes mark besides the mesh: it is kept elsewhere and told with each picture.
#pragma once

#include "geometry/vec3.h"

#include <array>

namespace polyfab {

struct Markers {
    int edgeFace = -1;   ///< face of the current edge; -1: there is none
    int edgeCorner = -1; ///< the corner of that face at which the edge begins
    /// The settable points, world positions. Neither is shown before one has left the origin.
    std::array<Vec3, 2> settable{};
};

} // namespace polyfab
